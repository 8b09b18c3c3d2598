#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// A scripted ScreenCaptureKit, with the samples that it hands over. Its answers come on threads of their own.
namespace fake {

/// How a question is answered. Without a description, there is no error.
struct CaptureReply {
  bool comes = true;  ///< Otherwise it is held back until `answerHeldBack`.
  std::optional<std::string> error = std::nullopt;
};

/// What a stream was asked for.
struct CaptureRequest {
  std::size_t display = 0;
  std::size_t excludedWindows = 0;
  std::size_t width = 0;
  std::size_t height = 0;
  std::int64_t intervalValue = 0;
  std::int32_t intervalScale = 0;
  std::uint32_t pixelFormat = 0;
  bool showsCursor = false;
  bool preservesAspectRatio = true;
  long queueDepth = 0;
  std::string queueLabel;
  unsigned int queueQuality = 0;
};

/// A sample as a test wants it.
struct Sample {
  enum class Type { screen, audio };
  struct NoAttachments {};
  struct NoStatus {};
  using Status = std::variant<int, double, std::string, NoStatus, NoAttachments>;

  Type type = Type::screen;
  bool isValid = true;
  Status status = 0;
  bool hasPixels = true;
  std::size_t width = 1000;  ///< Distinguishes the samples of a test.
  std::size_t height = 800;
};

constexpr int idle = 1;

struct ScreenCapture {
  struct Display {
    long width;
    long height;
    std::uint32_t id = 0;
  };

  std::vector<Display> displays = {{1000, 800, 1}, {640, 480, 2}};  ///< In any order.
  CaptureReply content;
  CaptureReply start;
  CaptureReply stop;
  bool hasContent = true;                  ///< Otherwise neither content nor, without one in `content`, an error.
  std::optional<std::string> outputError;  ///< Why there can be no output.
  std::function<void()> whileStarting;     ///< What happens while a stream is asked to start.
  std::function<void()> whileStopping;     ///< What happens while a stream is asked to stop.
  bool keepsOutputs = true;                ///< Whether a stream keeps its outputs alive.

  std::vector<std::string> calls;  ///< In order.
  std::vector<CaptureRequest> requests;
};

/// Tests set it anew while nothing is captured, and read it when they have waited for what they look at.
ScreenCapture& screenCapture();

/// Hands the sample to the newest stream, and returns when it has been taken.
void deliver(const Sample& sample);

/// The same, but returns at once.
void post(const Sample& sample);

/// Returns when the newest stream has taken what was on its way to it.
void finishQueue();

/// Whether the newest stream is alive and has an output that is.
bool newestHasOutput();

/// How often the service was called so far. Threads: any.
std::size_t callCount();

/// Has the newest stream end by itself.
void failStream(const std::string& description);

/// Gives the answers that are held back, or has them forgotten.
void answerHeldBack();
void forgetHeldBack();

/// Returns when the answers that have been given have been handled.
void finishAnswers();

/// A buffer of Core Video that is in no sample.
class PixelBuffer {
 public:
  PixelBuffer();
  ~PixelBuffer();
  PixelBuffer(const PixelBuffer&) = delete;
  PixelBuffer& operator=(const PixelBuffer&) = delete;

  void* get() const { return buffer_; }

 private:
  void* const buffer_;
};

/// How many samples are alive.
int livingSamples();

}  // namespace fake
