#pragma once

#include "base/Executor.hpp"

#include <memory>

namespace orvel {

/// The main thread's event loop, which panel, timers and published state run on. Needs a display.
///
/// Threads: made, run and destroyed on the main thread; the rest on any. What is posted after the loop has ended does
/// not run.
class MainLoop final : public Executor {
 public:
  /// Takes the program's arguments, which it may keep.
  MainLoop(int& argc, char** argv);
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
