#pragma once

#include "mirror/CapturedFrame.hpp"
#include "platform/linux/capture/ScreenView.hpp"

#include <cstdint>
#include <optional>

namespace orvel {

/// What a screen shows, offered once. It is fetched when it is asked for. Threads: one at a time; waits for the server.
class ScreenFrame final : public CapturedFrame {
 public:
  explicit ScreenFrame(ScreenView& view) : view_(view) {}
  ~ScreenFrame() override { view_.putAway(); }
  ScreenFrame(const ScreenFrame&) = delete;
  ScreenFrame& operator=(const ScreenFrame&) = delete;

  bool isScreen() const override { return true; }
  bool isValid() const override { return true; }
  std::optional<std::int64_t> status() const override { return 0; }

  const PixelBuffer* pixels() override {
    if (picture_ == nullptr) picture_ = view_.picture();
    return picture_;
  }

 private:
  ScreenView& view_;
  const PixelBuffer* picture_ = nullptr;
};

}  // namespace orvel
