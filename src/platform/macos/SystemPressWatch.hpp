#pragma once

#include "ui/PressWatch.hpp"

#include <memory>

namespace orvel {

/// The presses that other programs get, which takes no permission; our own windows receive theirs anyway.
/// Threads: the main thread.
class SystemPressWatch final : public PressWatch {
 public:
  SystemPressWatch();
  ~SystemPressWatch() override;
  SystemPressWatch(const SystemPressWatch&) = delete;
  SystemPressWatch& operator=(const SystemPressWatch&) = delete;

  void begin(std::function<void()> pressed) override;
  void end() override;

 private:
  struct Monitor;

  const std::unique_ptr<Monitor> monitor_;
};

}  // namespace orvel
