#pragma once

#include <gio/gio.h>

#include <functional>
#include <memory>
#include <string>

namespace orvel {

class MessageBus;

/// What others on a message bus may ask of this program, by the interface that desktops use to start programs: to show
/// itself. Who asks has the answer when it has been done.
///
/// Threads: the main thread.
class ApplicationObject {
 public:
  static constexpr auto interface = "org.freedesktop.Application";

  /// Called on the main thread with what the desktop gave the caller as a proof of the user's wish, if anything.
  using Show = std::function<void(const std::string& token)>;

  /// Answers those who come by that bus, from now on. It must outlive this object.
  ApplicationObject(const MessageBus& bus, std::string path, Show show);
  ~ApplicationObject();
  ApplicationObject(const ApplicationObject&) = delete;
  ApplicationObject& operator=(const ApplicationObject&) = delete;

  /// What a caller tells of the circumstances, to go with a call: the proof that the desktop gave it, if any.
  static GVariant* circumstances(const std::string& token);

 private:
  class Calls;

  const std::shared_ptr<Calls> calls_;
};

}  // namespace orvel
