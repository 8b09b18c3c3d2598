#pragma once

#include <boost/uuid/uuid.hpp>

namespace orvel {

using SessionID = boost::uuids::uuid;

/// What a session needs of the hub that made it. Threads: any.
class SessionHub {
 public:
  virtual ~SessionHub() = default;

  /// Announces the names of the connected phones anew.
  virtual void publishClients() = 0;

  /// Forgets the session. Harmless when it is not known.
  virtual void leave(const SessionID& id) = 0;

  /// Says whether a phone sees the screen.
  virtual void setMirroring(bool on) = 0;
};

}  // namespace orvel
