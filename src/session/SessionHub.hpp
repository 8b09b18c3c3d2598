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

  /// The session's phone has left, but what it had sent is still to be done: counts it no more among the phones, and
  /// keeps it until it leaves. False when it is not known, or when too many do so already.
  virtual bool linger(const SessionID& id) = 0;

  /// Forgets the session. Harmless when it is not known.
  virtual void leave(const SessionID& id) = 0;

  /// Says whether a phone sees the screen.
  virtual void setMirroring(bool on) = 0;
};

}  // namespace orvel
