#include "tools/MirrorSession.hpp"

#include <cstdint>
#include <utility>

namespace orvel::phone {
namespace {

constexpr char frameMarker = '\x80';
constexpr std::string_view jpegStart = "\xff\xd8\xff";
constexpr std::string_view jpegEnd = "\xff\xd9";
constexpr std::int64_t longestSide = 16384;

Error unexpected(const char* sentence) {
  return {Error::Kind::unexpected, sentence};
}

std::optional<int> lengthIn(const boost::json::object& message, std::string_view key) {
  const auto* value = message.if_contains(key);
  const auto* length = value ? value->if_int64() : nullptr;
  if (!length || *length < 1 || *length > longestSide) return std::nullopt;
  return static_cast<int>(*length);
}

Result<MirrorSize> sizeFrom(const boost::json::object& message) {
  const auto width = lengthIn(message, "width");
  const auto height = lengthIn(message, "height");
  if (!width || !height) return unexpected("the host's mirror has no size that makes sense");
  return MirrorSize{*width, *height};
}

boost::json::object requestFor(const MirrorWish& wish) {
  boost::json::object request{{"t", "mirrorStart"}};
  if (wish.width) request["width"] = *wish.width;
  if (wish.fps) request["fps"] = *wish.fps;
  if (wish.quality) request["quality"] = *wish.quality;
  return request;
}

}  // namespace

Result<MirrorFrame> MirrorFrame::from(HostMessage message) {
  std::string_view jpeg = message.payload;
  if (!jpeg.starts_with(frameMarker)) return unexpected("a binary message without the marker of a frame");
  jpeg.remove_prefix(1);
  if (!jpeg.starts_with(jpegStart) || !jpeg.ends_with(jpegEnd)) return unexpected("a frame that is no whole JPEG");
  return MirrorFrame(std::move(message));
}

Result<MirrorSize> MirrorSession::start(const MirrorWish& wish, Seconds timeout) {
  early_.reset();
  if (auto failure = phone_.send(requestFor(wish))) return *std::move(failure);
  const Moment deadline = after(timeout);
  while (true) {
    auto message = phone_.receive(until(deadline));
    if (!message) return explained(message.error(), "the host has not said in time whether it mirrors its screen");
    const auto control = controlIn(*message);
    if (isKind(control, "mirrorReady")) return sizeFrom(*control);
    if (isKind(control, "mirrorDenied")) return Error{Error::Kind::denied, reasonIn(*control)};
    // The capture may be faster than the answer, and on a screen that stands still this frame is the only one.
    if (!message->isText) early_ = *std::move(message);
  }
}

Result<MirrorFrame> MirrorSession::next(Seconds timeout) {
  if (auto early = std::exchange(early_, std::nullopt)) return MirrorFrame::from(*std::move(early));
  const Moment deadline = after(timeout);
  while (true) {
    auto message = phone_.receive(until(deadline));
    if (!message) return explained(message.error(), "no frame came in time");
    if (!message->isText) return MirrorFrame::from(*std::move(message));
  }
}

Failure MirrorSession::stop(Seconds timeout) {
  if (auto failure = phone_.send({{"t", "mirrorStop"}})) return failure;
  const auto heard = phone_.ping(timeout);
  return heard ? Failure() : heard.error();
}

}  // namespace orvel::phone
