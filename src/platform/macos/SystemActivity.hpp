#pragma once

#include "session/Activity.hpp"

#include <memory>

namespace orvel {

/// An activity that the user began: without one, App Nap slows the timers and the network of a program that shows no
/// window. A Mac that nobody touches may still go to sleep. Threads: the main thread.
class SystemActivity final : public Activity {
 public:
  SystemActivity();
  ~SystemActivity() override;
  SystemActivity(const SystemActivity&) = delete;
  SystemActivity& operator=(const SystemActivity&) = delete;

  bool begin(const std::string& reason) override;
  void end() override;

 private:
  struct Current;

  const std::unique_ptr<Current> current_;
};

}  // namespace orvel
