#include "bench/RestlessScreen.hpp"

#include "mirror/CaptureService.hpp"

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>
#include <utility>

namespace orvel::bench {
namespace {

constexpr int width = 640;
constexpr int height = 360;
constexpr int columnsToRoam = 97;
constexpr int rowsToRoam = 61;

class Frame final : public CapturedFrame {
 public:
  explicit Frame(const PixelBuffer& pixels) : pixels_(pixels) {}

  bool isScreen() const override { return true; }
  bool isValid() const override { return true; }
  std::optional<std::int64_t> status() const override { return 0; }
  const PixelBuffer* pixels() override { return &pixels_; }

 private:
  const PixelBuffer pixels_;
};

class Stream final : public CaptureStream {
 public:
  Stream(const PixelBuffer& scenery, Handlers handlers)
      : scenery_(scenery),
        handlers_(std::move(handlers)),
        thread_([this](const std::stop_token& stop) { run(stop); }) {}

  void resume() override {
    const std::lock_guard lock(mutex_);
    resumed_ = true;
    changed_.notify_all();
  }

 private:
  void run(const std::stop_token& stop) {
    for (int number = 0; !stop.stop_requested(); ++number) {
      Frame frame(partOfScenery(number));
      if (handlers_.frame(frame) == FrameAnswer::blocked) awaitResume(stop);
    }
  }

  void awaitResume(const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, stop, [this] { return resumed_; });
    resumed_ = false;
  }

  PixelBuffer partOfScenery(int number) const {
    const auto row = static_cast<std::size_t>(number % rowsToRoam);
    const auto column = static_cast<std::size_t>(number % columnsToRoam);
    return {scenery_.bytes + row * scenery_.bytesPerRow + 4 * column, scenery_.bytesPerRow, width, height};
  }

  const PixelBuffer scenery_;
  const Handlers handlers_;
  std::mutex mutex_;
  std::condition_variable_any changed_;
  bool resumed_ = false;
  std::jthread thread_;
};

class Content final : public ShareableContent {
 public:
  explicit Content(const PixelBuffer& scenery) : scenery_(scenery) {}

  std::vector<Size> displays() const override { return {{width, height}}; }

  std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> start(std::size_t, const CaptureConfiguration&,
                                                                     CaptureStream::Handlers handlers) override {
    return std::make_unique<Stream>(scenery_, std::move(handlers));
  }

 private:
  const PixelBuffer scenery_;
};

}  // namespace

RestlessScreen::RestlessScreen() : scenery_(photograph(width + columnsToRoam, height + rowsToRoam)) {}

std::variant<std::unique_ptr<ShareableContent>, CaptureFailure> RestlessScreen::shareableContent() {
  return std::make_unique<Content>(scenery_.buffer());
}

}  // namespace orvel::bench
