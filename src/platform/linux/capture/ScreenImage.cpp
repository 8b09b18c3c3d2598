#include "platform/linux/capture/ScreenImage.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <libyuv/convert_argb.h>

#include <cstring>

namespace orvel {
namespace {

constexpr std::uint32_t allPlanes = ~std::uint32_t{0};

std::int16_t coordinate(int value) {
  return static_cast<std::int16_t>(value);
}

std::uint16_t length(int value) {
  return static_cast<std::uint16_t>(value);
}

}  // namespace

ScreenImage::ScreenImage(const X11Connection& connection, const ScreenFormat& format, const PixelRect& area)
    : connection_(connection),
      format_(format),
      area_(area),
      fetchedBytesPerRow_(format.bytesPerRow(area.width)),
      shared_(SharedMemory::make(connection, fetchedBytesPerRow_ * static_cast<std::size_t>(area.height))) {
  if (!shared_) plain_.resize(fetchedBytesPerRow_ * static_cast<std::size_t>(area.height));
  fetched_ = shared_ ? shared_->bytes() : plain_.data();
  if (format_.pixels != ScreenFormat::Pixels::blueGreenRed) converted_.resize(size());
  bytes_ = converted_.empty() ? fetched_ : converted_.data();
}

bool ScreenImage::fetch(const Rows& rows) {
  if (rows.isEmpty()) return true;
  if (!(shared_ ? fetchShared(rows) : fetchCopy(rows))) return false;
  if (bytes_ != fetched_) convert(rows);
  return true;
}

bool ScreenImage::showsTheSameAs(const ScreenImage& other) const {
  return std::memcmp(bytes_, other.bytes_, size()) == 0;
}

bool ScreenImage::fetchShared(const Rows& rows) {
  const auto offset = fetchedBytesPerRow_ * static_cast<std::size_t>(rows.begin);
  const auto asked =
      xcb_shm_get_image(connection_.get(), connection_.root(), coordinate(area_.x), coordinate(area_.y + rows.begin),
                        length(area_.width), length(rows.end - rows.begin), allPlanes, XCB_IMAGE_FORMAT_Z_PIXMAP,
                        shared_->segment(), static_cast<std::uint32_t>(offset));
  return X11Answer<xcb_shm_get_image_reply_t>(xcb_shm_get_image_reply(connection_.get(), asked, nullptr)) != nullptr;
}

bool ScreenImage::fetchCopy(const Rows& rows) {
  const auto asked =
      xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection_.root(), coordinate(area_.x),
                    coordinate(area_.y + rows.begin), length(area_.width), length(rows.end - rows.begin), allPlanes);
  const X11Answer<xcb_get_image_reply_t> reply{xcb_get_image_reply(connection_.get(), asked, nullptr)};
  const auto size = fetchedBytesPerRow_ * static_cast<std::size_t>(rows.end - rows.begin);
  if (!reply || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) < size) return false;
  std::memcpy(fetched_ + fetchedBytesPerRow_ * static_cast<std::size_t>(rows.begin), xcb_get_image_data(reply.get()),
              size);
  return true;
}

void ScreenImage::convert(const Rows& rows) {
  const auto begin = static_cast<std::size_t>(rows.begin);
  libyuv::RGB565ToARGB(fetched_ + fetchedBytesPerRow_ * begin, static_cast<int>(fetchedBytesPerRow_),
                       bytes_ + bytesPerRow() * begin, static_cast<int>(bytesPerRow()), area_.width,
                       rows.end - rows.begin);
}

}  // namespace orvel
