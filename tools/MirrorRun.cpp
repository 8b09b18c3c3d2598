#include "tools/MirrorRun.hpp"

#include "tools/TimeStrip.hpp"

#include <algorithm>
#include <utility>

namespace orvel::phone {
namespace {

// How long a viewer may wait for an answer to what it does.
constexpr Seconds viewerPause{0.02};

std::optional<AgeCount::Age> ageOf(const LumaPicture& picture, const Arrival& arrival) {
  const auto shown = TimeStrip::find(picture);
  if (!shown) return std::nullopt;
  return std::chrono::round<AgeCount::Age>(arrival.wall - *shown);
}

}  // namespace

MirrorRun::MirrorRun(PhoneClient& phone, MirrorViewer& viewer, step::Mirror mirror, const MirrorPace& pace)
    : session_(phone), viewer_(viewer), mirror_(std::move(mirror)), pace_(pace) {
  if (mirror_.folder) folder_.emplace(*mirror_.folder);
}

Failure MirrorRun::carryOut() {
  if (folder_) {
    if (auto failure = folder_->prepare()) return failure;
  }
  const auto size = session_.start(mirror_.wish, pace_.limit);
  if (!size) return size.error();
  size_ = *size;
  statistics_.emplace(std::chrono::steady_clock::now());
  auto failure = watch();
  end_ = std::chrono::steady_clock::now();
  auto unheard = session_.stop(pace_.limit);
  return failure ? failure : unheard;
}

Failure MirrorRun::watch() {
  const Moment end = mirror_.seconds ? after(Seconds(*mirror_.seconds)) : Moment::max();
  const Moment firstFrame = std::min(end, after(pace_.limit));
  Moment nextLine = after(pace_.line);
  while (viewer_.wantsMore()) {
    const Moment now = std::chrono::steady_clock::now();
    if (now >= firstFrame && statistics_->frames() == 0) return withoutFrames();
    if (now >= end) return std::nullopt;
    if (now >= nextLine) {
      viewer_.report(statistics_->line(now));
      nextLine = after(pace_.line);
    }
    if (auto failure = awaitFrame(std::min<Seconds>(viewerPause, end - now))) return failure;
  }
  return std::nullopt;
}

Failure MirrorRun::awaitFrame(Seconds timeout) {
  const auto frame = session_.next(timeout);
  if (frame) return take(*frame);
  if (frame.error().kind == Error::Kind::timedOut) return std::nullopt;
  if (frame.error().kind != Error::Kind::unexpected) return frame.error();
  leaveOut(frame.error());
  return std::nullopt;
}

Failure MirrorRun::take(const MirrorFrame& frame) {
  const auto picture = decoder_.decode(frame.jpeg(), size_);
  if (!picture) {
    leaveOut(picture.error());
    return std::nullopt;
  }
  statistics_->take(frame.jpeg().size(), ageOf(*picture, frame.arrival()));
  viewer_.show(frame.jpeg());
  return folder_ ? folder_->write(statistics_->frames(), frame.jpeg()) : std::nullopt;
}

void MirrorRun::leaveOut(const Error& error) {
  if (leftOut_ == 0) firstReason_ = error.text;
  ++leftOut_;
}

Failure MirrorRun::withoutFrames() const {
  return Error{Error::Kind::timedOut, leftOut_ == 0 ? "the host mirrors its screen, but has sent no frame in time"
                                                    : "the host has sent nothing that is a frame: " + firstReason_};
}

std::string MirrorRun::report() const {
  if (!statistics_) return "";
  std::string text = "screen: " + std::to_string(size_.width) + "x" + std::to_string(size_.height) + '\n';
  text += statistics_->report(end_);
  if (folder_) text += "saved: " + std::to_string(statistics_->frames()) + " in " + folder_->path().string() + '\n';
  if (leftOut_ > 0) text += "left out: " + std::to_string(leftOut_) + ", the first was " + firstReason_ + '\n';
  return text;
}

}  // namespace orvel::phone
