#pragma once

#include "base/Guarded.hpp"
#include "mirror/CaptureService.hpp"

#include <memory>
#include <string>

namespace orvel {

class X11Connection;

/// Captures the screen of an X server. Each capture has a connection of its own, so that it waits for nobody and nobody
/// for it.
///
/// Threads: any; `shareableContent` waits for the server.
class X11CaptureService final : public CaptureService {
 public:
  /// `display` names the server that is at the other end of the connection.
  X11CaptureService(const X11Connection& connection, std::string display);

  std::variant<std::unique_ptr<ShareableContent>, CaptureFailure> shareableContent() override;

  /// Disconnects from a server that does not answer: a capture that is just starting fails. The connection that this
  /// was made with must be shut down, too.
  void disconnect();

 private:
  struct State {
    std::weak_ptr<X11Connection> newest;  // those before belong to streams, which wait for nobody
    bool isDisconnected = false;
  };

  const X11Connection& connection_;
  const std::string display_;
  Guarded<State> state_;
};

}  // namespace orvel
