#include "mirror/CaptureService.hpp"
#include "platform/macos/SystemCaptureService.hpp"
#include "platform/macos/SystemJPEGEncoder.hpp"
#include "platform/macos/SystemScreenRecordingAccess.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <variant>

namespace orvel {
namespace {

constexpr std::int64_t complete = 0;

TEST(SystemCaptureService, AFrameOfTheMainDisplayBecomesAnImage) {
  if (!SystemScreenRecordingAccess().isGranted()) GTEST_SKIP() << "needs the permission Screen Recording";
  SystemCaptureService service;
  auto answer = service.shareableContent();
  ASSERT_EQ(std::get_if<CaptureFailure>(&answer), nullptr) << std::get<CaptureFailure>(answer).description;
  auto& content = *std::get<std::unique_ptr<ShareableContent>>(answer);
  ASSERT_FALSE(content.displays().empty());

  SystemJPEGEncoder encoder;
  std::promise<std::size_t> encoded;
  std::atomic<bool> isDone = false;
  const auto take = [&](CapturedFrame& frame) {
    if (frame.status() != complete || isDone.exchange(true)) return FrameAnswer::taken;
    const PixelBuffer* pixels = frame.pixels();
    const auto image = pixels == nullptr ? std::nullopt : encoder.encode(*pixels, 0.5);
    encoded.set_value(image ? image->size : 0);
    return FrameAnswer::taken;
  };
  const auto stream =
      content.start(0, {.width = 640, .height = 400, .framesPerSecond = 10}, {.frame = take, .stopped = {}});
  ASSERT_EQ(std::get_if<CaptureFailure>(&stream), nullptr) << std::get<CaptureFailure>(stream).description;
  auto size = encoded.get_future();
  ASSERT_EQ(size.wait_for(std::chrono::seconds(10)), std::future_status::ready);
  EXPECT_GT(size.get(), 0u);
}

}  // namespace
}  // namespace orvel
