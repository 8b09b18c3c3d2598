#pragma once

#include <xcb/xcb.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <semaphore>
#include <string>
#include <thread>

namespace orvel {

struct FreeMemory {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

/// A reply or an event, which comes in memory of its own.
template <class Content>
using X11Answer = std::unique_ptr<Content, FreeMemory>;

/// The part of an event's response type that tells its kind; the rest tells who sent it.
inline constexpr std::uint8_t x11EventTypeMask = 0x7f;

/// The connection to the X server, and the thread that waits for its events. When the server goes it stays broken:
/// requests then have no effect and no answer.
///
/// Threads: any, but `listen` and `stopListening` are for the owner. The handlers run on the thread of the connection.
class X11Connection {
 public:
  struct Handlers {
    /// An event of the server; changes of the root window's properties and geometry are always among them.
    std::function<void(const xcb_generic_event_t&)> event;
    /// The server has gone. Called once, and not for `stopListening`.
    std::function<void()> ended;
  };

  /// Connects to the display of that name, such as ":0". Nothing when no server answers there.
  static std::unique_ptr<X11Connection> open(const std::string& display);

  ~X11Connection();
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;

  /// Starts to hand on what the server says. Called once. False when the system has no thread to give.
  bool listen(Handlers handlers);

  /// Waits until the server has taken all that was sent, unless it hangs; no handler runs after that. Not called by a
  /// handler. Harmless the second time.
  void stopListening();

  /// Parts from the server at once: whoever waits for an answer gets none. Threads: any.
  void breakOff() const;

  /// False once the server has gone.
  bool isAlive() const { return xcb_connection_has_error(connection_) == 0; }

  /// What the server has of an extension, or null. Asks the server only the first time.
  const xcb_query_extension_reply_t* extension(xcb_extension_t& name) const;

  /// Whether the server is Xwayland, see there. Asks the server only the first time.
  bool isXwayland() const;

  xcb_connection_t* get() const { return connection_; }
  xcb_window_t root() const { return root_; }

 private:
  X11Connection(xcb_connection_t* connection, xcb_window_t root);
  void handOn(const Handlers& handlers) const;
  void sendFarewell() const;
  bool isFarewell(const xcb_generic_event_t& event) const;

  xcb_connection_t* const connection_;
  const xcb_window_t root_;
  const xcb_window_t mailbox_;  // never shown; what is sent to it comes back to us
  mutable std::once_flag askedForXwayland_;
  mutable bool isXwayland_ = false;
  std::atomic<bool> stopping_ = false;
  std::binary_semaphore threadEnded_{0};
  std::thread thread_;
};

}  // namespace orvel
