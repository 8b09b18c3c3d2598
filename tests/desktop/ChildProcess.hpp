#pragma once

#include "desktop/Descriptor.hpp"
#include "desktop/Timeout.hpp"

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// A program that a test has started. It dies with this object, and with the test program, however that ends.
///
/// Threads: one at a time; the thread that made it must live as long as the child.
class ChildProcess {
 public:
  /// What differs from the environment of the test program; nothing for what shall be missing.
  using Environment = std::map<std::string, std::optional<std::string>>;

  struct Program {
    std::vector<std::string> command;  ///< The program, found by PATH, and its arguments.
    Environment environment = {};
    std::vector<int> keptDescriptors = {};  ///< Open in the child under the same numbers.
  };

  /// Starts it. A program that cannot be started ends with exit code 127.
  explicit ChildProcess(const Program& program);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t pid() const { return pid_; }

  /// What it has written to its output and error output until now; the first megabyte of it.
  const std::string& output();

  /// Waits until `text` stands in the output. False when it does not come in time or the program ends without it.
  bool waitForOutput(const std::string& text, Milliseconds limit = timeout);

  /// Writes to its input.
  void write(const std::string& text);
  void closeInput();

  void signal(int number);

  /// Waits for its end: its exit code, or 128 plus the signal that killed it. Nothing when it does not end in time.
  std::optional<int> waitForExit(Milliseconds limit = timeout);

 private:
  void pump(Milliseconds limit);
  bool reap(int options);

  pid_t pid_ = -1;
  Descriptor ended_;  // becomes readable when the child has ended
  Descriptor input_;
  Descriptor outputPipe_;
  std::string output_;
  std::optional<int> exit_;
};

}  // namespace orvel
