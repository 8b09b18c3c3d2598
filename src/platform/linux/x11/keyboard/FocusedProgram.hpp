#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>

namespace orvel {

class X11Connection;

/// Waits until the program that has the keyboard has processed what was sent to it.
///
/// Most programs answer when they are asked whether they are alive, and in the order of what comes to them. For those
/// that do not, and those that hang, a fixed time must do.
///
/// Threads: `handle` is for the thread of the connection, all else for one at a time.
class FocusedProgram {
 public:
  using Time = std::chrono::steady_clock::time_point;

  explicit FocusedProgram(const X11Connection& connection);

  /// Whether the program of that window answers pings. Waits for the server.
  bool answers(xcb_window_t window);

  /// Waits until the program of that window has processed what was sent to it by now; of one that never answers, that
  /// is taken for granted from `otherwise` on. False when it is one that answers, and does not in time. The server must
  /// not be grabbed.
  bool waitUntilReady(xcb_window_t window, Time otherwise);

  /// Has the server report no more answers, until the next wait.
  void rest();

  /// Ends a wait for an answer, and has the next ones not ask, for `handle` is not called any more. Threads: any.
  void stop();

  void handle(const xcb_generic_event_t& event);

 private:
  struct Question {
    xcb_window_t window = XCB_NONE;
    std::uint32_t number = 0;
    bool isAnswered = false;
  };

  struct Answering {
    xcb_window_t window = XCB_NONE;
    std::optional<xcb_window_t> by;  // itself or one around it
  };

  std::optional<xcb_window_t> answeringWindow(xcb_window_t window);
  std::optional<xcb_window_t> findAnsweringWindow(xcb_window_t window) const;
  bool answersPing(xcb_window_t window) const;
  bool canAsk(xcb_window_t window);
  void ask(xcb_window_t window);
  bool waitForAnswer();
  void selectAnswers(bool wanted);

  const X11Connection& connection_;
  const xcb_atom_t protocols_;
  const xcb_atom_t ping_;
  bool isSelected_ = false;
  Answering answering_;  // the one that was asked for last
  std::mutex mutex_;
  std::condition_variable answered_;
  Question question_;  // the last one
  bool isStopped_ = false;
};

}  // namespace orvel
