#pragma once

#include <gio/gio.h>

#include <functional>
#include <memory>
#include <string>

namespace orvel {

class MessageBus;
class TimeLimit;

/// The object by which others on a message bus activate this program, as desktops activate programs that they start. A
/// call is answered when it has been handled.
///
/// Threads: the main thread.
class ApplicationObject {
 public:
  /// Called on the main thread with the caller's activation token, which may be empty.
  using Show = std::function<void(const std::string& token)>;

  /// Answers those who come by that bus, from now on, for the program of that name. The bus must outlive this object.
  ApplicationObject(const MessageBus& bus, const std::string& name, Show show);
  ~ApplicationObject();
  ApplicationObject(const ApplicationObject&) = delete;
  ApplicationObject& operator=(const ApplicationObject&) = delete;

  /// Asks the program of that name on the bus to show itself, with an activation token, which may be empty. Waits for
  /// its answer within `limit`; false without one. Unless `flags` say otherwise, the bus starts the program. Threads:
  /// as the bus.
  static bool activate(const MessageBus& bus, const std::string& name, const std::string& token, const TimeLimit& limit,
                       GDBusCallFlags flags = G_DBUS_CALL_FLAGS_NONE);

 private:
  class Calls;

  const std::shared_ptr<Calls> calls_;
};

}  // namespace orvel
