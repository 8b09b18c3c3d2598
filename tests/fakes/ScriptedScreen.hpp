#pragma once

#include "base/Executor.hpp"
#include "mirror/CaptureService.hpp"
#include "mirror/JPEGEncoder.hpp"
#include "mirror/ScreenRecordingAccess.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvel {

/// A frame as a test wants it.
class ScriptedFrame final : public CapturedFrame {
 public:
  bool isScreen() const override { return ofScreen; }
  bool isValid() const override { return valid; }
  std::optional<std::int64_t> status() const override { return statusValue; }
  const PixelBuffer* pixels() override {
    ++fetches;
    return hasPixels ? &picture : nullptr;
  }

  bool ofScreen = true;
  bool valid = true;
  std::optional<std::int64_t> statusValue;
  bool hasPixels = true;
  PixelBuffer picture;
  int fetches = 0;
};

/// A screen that shows what a test has it show, and its capture, which offers a frame when a test says so.
class ScriptedScreen final : public CaptureService, public ScreenRecordingAccess {
 public:
  bool isGranted() override { return granted && (!grantsLeft || (*grantsLeft)-- > 0); }
  Denial denial() const override {
    return {
        .onRequest = "Screen Recording is off for Orvel. Turn it on in Privacy & Security on the Mac, then try again.",
        .onStart = "Screen Recording is off for Orvel. Turn it on in Privacy & Security."};
  }
  void request() override {
    if (whileAsking) whileAsking();
    ++requests;
  }

  std::variant<std::unique_ptr<ShareableContent>, CaptureFailure> shareableContent() override {
    if (failuresLeft > 0 && failuresLeft-- > 0) return CaptureFailure{"Not yet."};
    if (contentFailure) return CaptureFailure{*contentFailure};
    return std::make_unique<Content>(*this);
  }

  /// Offers a frame by the capture that was started last, and says what was answered.
  FrameAnswer offer(CapturedFrame& frame) { return handlers.at(handlers.size() - 1).frame(frame); }
  FrameAnswer offer() {
    ScriptedFrame frame;
    return offer(frame);
  }

  /// The capture that was started last ends by itself.
  void fail() { handlers.at(handlers.size() - 1).stopped(); }

  bool granted = true;
  std::optional<int> grantsLeft;  ///< How often it is still said to be.
  std::vector<Size> displays = {{1000, 800}, {640, 480}};
  std::optional<std::string> contentFailure;
  std::optional<std::string> startFailure;
  int failuresLeft = 0;  ///< How often there is nothing to capture yet.
  Task whileAsking;      ///< What happens when the user is asked.
  Task whileStarting;    ///< What happens before a start is done.

  int requests = 0;
  int running = 0;
  int resumes = 0;
  std::vector<CaptureConfiguration> configurations;  ///< Of the captures started, as all below.
  std::vector<std::size_t> captured;
  std::vector<CaptureStream::Handlers> handlers;

 private:
  class Stream final : public CaptureStream {
   public:
    explicit Stream(ScriptedScreen& screen) : screen_(screen) { ++screen_.running; }
    ~Stream() override { --screen_.running; }
    void resume() override { ++screen_.resumes; }

   private:
    ScriptedScreen& screen_;
  };

  class Content final : public ShareableContent {
   public:
    explicit Content(ScriptedScreen& screen) : screen_(screen) {}

    std::vector<Size> displays() const override { return screen_.displays; }

    std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> start(std::size_t display,
                                                                       const CaptureConfiguration& configuration,
                                                                       CaptureStream::Handlers listeners) override {
      if (screen_.startFailure) return CaptureFailure{*screen_.startFailure};
      screen_.captured.push_back(display);
      screen_.configurations.push_back(configuration);
      screen_.handlers.push_back(std::move(listeners));
      auto stream = std::make_unique<Stream>(screen_);
      if (screen_.whileStarting) std::exchange(screen_.whileStarting, {})();
      return stream;
    }

   private:
    ScriptedScreen& screen_;
  };
};

/// An encoder whose images are as large as a test says.
class ScriptedEncoder final : public JPEGEncoder {
 public:
  std::optional<SharedBytes> encode(const PixelBuffer& picture, double quality) override {
    qualities.push_back(quality);
    pictures.push_back(&picture);
    if (whileEncoding) std::exchange(whileEncoding, {})();
    if (!works) return std::nullopt;
    const auto bytes = std::make_shared<std::vector<std::uint8_t>>(size, fill);
    return SharedBytes{{bytes, bytes->data()}, size};
  }

  std::size_t size = 300'000;  ///< Which leaves the quality as it is.
  std::uint8_t fill = 0xff;
  bool works = true;
  Task whileEncoding;  ///< What happens before the next image is done.

  std::vector<double> qualities;
  std::vector<const PixelBuffer*> pictures;
};

}  // namespace orvel
