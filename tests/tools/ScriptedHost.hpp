#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace orvel::phone {

/// What a scripted host has read.
struct PhoneMessage {
  bool isText = false;
  std::string payload;  ///< Empty also when the phone has gone.

  friend bool operator==(const PhoneMessage&, const PhoneMessage&) = default;
};

/// A host's end of one connection.
class HostEnd {
 public:
  virtual ~HostEnd() = default;

  virtual void send(std::string_view text) = 0;
  virtual void sendBinary(std::string_view bytes) = 0;
  virtual PhoneMessage read() = 0;

  /// Reads until the phone has gone; true when it took leave.
  virtual bool waitForGoodbye() = 0;

  /// Closes the TCP connection without a word.
  virtual void hangUp() = 0;
};

/// A host on loopback that takes one connection and then does what a test asks for.
///
/// Threads: one at a time; the script runs on a thread of its own, which has ended when the host is gone. So the phone
/// must go first, or the script must end by itself.
class ScriptedHost {
 public:
  explicit ScriptedHost(std::function<void(HostEnd&)> script);
  ~ScriptedHost();
  ScriptedHost(const ScriptedHost&) = delete;
  ScriptedHost& operator=(const ScriptedHost&) = delete;

  std::uint16_t port() const;

  /// Waits until the script has ended.
  void join();

 private:
  struct Listening;

  std::unique_ptr<Listening> listening_;
  std::thread thread_;
};

}  // namespace orvel::phone
