#pragma once

#include <xcb/xcb.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <semaphore>
#include <span>
#include <string>
#include <thread>

namespace orvel {

struct FreeMemory {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

/// Owns a reply, an event or an error, each of which the library allocates.
template <class Content>
using XCBPointer = std::unique_ptr<Content, FreeMemory>;

/// Waits for the reply to a request, which `fetch`, a function of the library, takes in: for `xcb_get_geometry` it is
/// `xcb_get_geometry_reply`. Null when the server refused the request or has gone. Threads: any.
template <class Reply, class Cookie>
XCBPointer<Reply> awaitReply(xcb_connection_t* connection,
                             Reply* (*fetch)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie) {
  return XCBPointer<Reply>(fetch(connection, cookie, nullptr));
}

/// The part of an event's response type that says its kind; the rest says who sent it.
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

  /// Starts to dispatch what the server says. Called once. False when the system has no thread to give.
  bool listen(Handlers handlers);

  /// Waits until the server has taken all that was sent, unless it hangs; no handler runs after that. Not called by a
  /// handler. Harmless the second time.
  void stopListening();

  /// Disconnects from the server at once: whoever waits for a reply gets none. Threads: any.
  void shutDown() const;

  /// False once the server has gone.
  bool isAlive() const { return xcb_connection_has_error(connection_) == 0; }

  /// What the server has of an extension, or null. Asks the server only the first time.
  const xcb_query_extension_reply_t* extension(xcb_extension_t& name) const;

  /// Whether the server is Xwayland, a guest on a Wayland desktop. It has X windows only: input that is posted there
  /// moves a pointer that nobody sees and clicks on whatever X window lies under it, and its screen shows nothing of
  /// the desktop. Sends no input to find out, at which some desktops would ask their user. Asks the server only the
  /// first time.
  bool isXwayland() const;

  xcb_connection_t* get() const { return connection_; }
  xcb_window_t root() const { return root_; }

 private:
  X11Connection(xcb_connection_t* connection, xcb_window_t root);
  void dispatch(const Handlers& handlers) const;
  void sendStopMessage() const;
  bool isStopMessage(const xcb_generic_event_t& event) const;

  xcb_connection_t* const connection_;
  const xcb_window_t root_;
  const xcb_window_t mailbox_;  // never shown; what is sent to it comes back to us
  mutable std::once_flag askedForXwayland_;
  mutable bool isXwayland_ = false;
  std::atomic<bool> stopping_ = false;
  std::binary_semaphore threadEnded_{0};
  std::thread thread_;
};

template <class Reply, class Cookie>
XCBPointer<Reply> awaitReply(const X11Connection& connection,
                             Reply* (*fetch)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie) {
  return awaitReply(connection.get(), fetch, cookie);
}

/// While it lives, the server serves no other program: what was read stays true. Never held for longer than a few
/// milliseconds, and never while another program is waited for, which could not answer. Threads: any; for
/// the server, all threads of the connection are one.
class ServerGrab {
 public:
  explicit ServerGrab(const X11Connection& connection) : connection_(connection) { xcb_grab_server(connection_.get()); }
  ~ServerGrab() {
    xcb_ungrab_server(connection_.get());
    xcb_flush(connection_.get());
  }
  ServerGrab(const ServerGrab&) = delete;
  ServerGrab& operator=(const ServerGrab&) = delete;

 private:
  const X11Connection& connection_;
};

/// Whether outputs of these names are those of Xwayland, or there is none, as without a monitor on Wayland.
bool areXwaylandOutputs(std::span<const std::string> names);

}  // namespace orvel
