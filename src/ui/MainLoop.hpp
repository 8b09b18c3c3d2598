#pragma once

#include "base/Executor.hpp"

#include <memory>
#include <string>
#include <vector>

namespace orvel {

/// The main thread's event loop, which panel, timers and published state run on. Needs a display.
///
/// Threads: made, run and destroyed on the main thread; the rest on any. What is posted after the loop has ended does
/// not run.
class MainLoop final : public Executor {
 public:
  /// Takes the name of the program and options for the toolkit.
  explicit MainLoop(std::vector<std::string> arguments);
  ~MainLoop() override;
  MainLoop(const MainLoop&) = delete;
  MainLoop& operator=(const MainLoop&) = delete;

  void post(Task task) override;
  void postAfter(Seconds delay, Task task) override;

  /// Runs until `quit`; returns the exit code that it was given.
  int run();

  /// Ends `run` once all that was posted before has run.
  void quit(int exitCode);

 private:
  struct Application;

  std::unique_ptr<Application> application_;
};

}  // namespace orvel
