#pragma once

#include "base/Executor.hpp"
#include "base/Guarded.hpp"

#include <memory>

namespace orvel {

/// A call on the main thread that other threads ask for. However often it is asked for before it is made, it is made
/// once.
///
/// Threads: made on the main thread; `ask` on any. When the last owner is on another thread, `cancel` comes first.
class MainThreadCall {
 public:
  explicit MainThreadCall(Task call);
  ~MainThreadCall();
  MainThreadCall(const MainThreadCall&) = delete;
  MainThreadCall& operator=(const MainThreadCall&) = delete;

  /// Has the call made once the main loop comes round to it.
  void ask();

  /// Takes it back: the call is not made any more, whoever asks. Threads: the main thread.
  void cancel();

 private:
  class Receiver;

  struct State {
    std::unique_ptr<Receiver> receiver;
    bool isAsked = false;
  };

  void makeIfAsked();

  const Task call_;
  Guarded<State> state_;
};

}  // namespace orvel
