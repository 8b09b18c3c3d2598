#pragma once

#include <functional>
#include <memory>

namespace orvel {

/// Hears the system's polite requests to end: Ctrl-C, SIGTERM, and a terminal that closes.
///
/// Threads: made and destroyed on one; `handler` runs on a thread of this object, which sleeps until a signal comes.
class TerminationSignals {
 public:
  explicit TerminationSignals(std::function<void()> handler);
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  struct Watch;

  std::unique_ptr<Watch> watch_;
};

}  // namespace orvel
