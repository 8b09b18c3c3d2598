#include "platform/linux/x11/capture/ScreenImage.hpp"

#include "platform/linux/OwnedDescriptor.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <fcntl.h>
#include <libyuv/convert_argb.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <xcb/shm.h>

#include <array>
#include <cstring>
#include <utility>

namespace orvel {
namespace {

constexpr std::uint32_t allPlanes = ~std::uint32_t{0};
constexpr std::pair<std::uint32_t, std::uint32_t> firstWithDescriptors{1, 2};

struct Layout {
  std::uint8_t depth = 0;
  std::uint8_t bitsPerPixel = 0;
  std::array<std::uint32_t, 3> masks = {};  // red, green, blue

  friend bool operator==(const Layout&, const Layout&) = default;
};

constexpr Layout trueColour{24, 32, {0xff0000, 0x00ff00, 0x0000ff}};
constexpr Layout trueColourAndAlpha{32, 32, {0xff0000, 0x00ff00, 0x0000ff}};
constexpr Layout highColour{16, 16, {0xf800, 0x07e0, 0x001f}};

const xcb_screen_t* screenOf(const X11Connection& connection) {
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection.get()));
  while (screens.rem > 0 && screens.data->root != connection.root()) xcb_screen_next(&screens);
  return screens.rem > 0 ? screens.data : nullptr;
}

std::uint8_t bitsPerPixelOf(const xcb_setup_t* setup, std::uint8_t depth) {
  for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem > 0; xcb_format_next(&formats)) {
    if (formats.data->depth == depth) return formats.data->bits_per_pixel;
  }
  return 0;
}

std::array<std::uint32_t, 3> masksOf(const xcb_screen_t* screen) {
  for (auto depths = xcb_screen_allowed_depths_iterator(screen); depths.rem > 0; xcb_depth_next(&depths)) {
    for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0; xcb_visualtype_next(&visuals)) {
      const xcb_visualtype_t& visual = *visuals.data;
      if (visual.visual_id == screen->root_visual) return {visual.red_mask, visual.green_mask, visual.blue_mask};
    }
  }
  return {};
}

/// Only such a connection can carry a descriptor, and XCB gives up another one that is asked to.
bool isLocal(const X11Connection& connection) {
  int domain = 0;
  socklen_t size = sizeof domain;
  const int socket = xcb_get_file_descriptor(connection.get());
  return getsockopt(socket, SOL_SOCKET, SO_DOMAIN, &domain, &size) == 0 && domain == AF_UNIX;
}

bool canShareMemory(const X11Connection& connection) {
  if (!isLocal(connection) || connection.extension(xcb_shm_id) == nullptr) return false;
  const auto asked = xcb_shm_query_version(connection.get());
  const auto version = awaitReply(connection, xcb_shm_query_version_reply, asked);
  return version && std::pair<std::uint32_t, std::uint32_t>(version->major_version, version->minor_version) >=
                        firstWithDescriptors;
}

/// Memory that is really there: a file that is only promised memory ends the program when the promise is broken.
std::uint8_t* mapNew(int descriptor, std::size_t size) {
  if (descriptor < 0 || posix_fallocate(descriptor, 0, static_cast<off_t>(size)) != 0) return nullptr;
  void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  return memory == MAP_FAILED ? nullptr : static_cast<std::uint8_t*>(memory);
}

std::int16_t coordinate(int value) {
  return static_cast<std::int16_t>(value);
}

std::uint16_t length(int value) {
  return static_cast<std::uint16_t>(value);
}

}  // namespace

std::optional<ScreenFormat> ScreenFormat::of(const X11Connection& connection) {
  const xcb_setup_t* setup = xcb_get_setup(connection.get());
  const xcb_screen_t* screen = screenOf(connection);
  if (screen == nullptr || setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) return std::nullopt;
  const Layout layout{screen->root_depth, bitsPerPixelOf(setup, screen->root_depth), masksOf(screen)};
  if (layout == trueColour || layout == trueColourAndAlpha) return ScreenFormat{Pixels::blueGreenRed};
  if (layout == highColour) return ScreenFormat{Pixels::rgb565};
  return std::nullopt;
}

/// Memory into which the X server writes pixels itself. It has no name, so nothing of it is left behind by a crash.
class ScreenImage::SharedMemory {
 public:
  /// Null when there is none to be had, as on a server on another computer.
  static std::unique_ptr<SharedMemory> make(const X11Connection& connection, std::size_t size);

  ~SharedMemory();
  SharedMemory(const SharedMemory&) = delete;
  SharedMemory& operator=(const SharedMemory&) = delete;

  std::uint8_t* bytes() const { return bytes_; }
  xcb_shm_seg_t segment() const { return segment_; }

 private:
  SharedMemory(const X11Connection& connection, std::uint8_t* bytes, std::size_t size);
  bool attach(int descriptor);

  const X11Connection& connection_;
  std::uint8_t* const bytes_;
  const std::size_t size_;
  const xcb_shm_seg_t segment_;
  bool isAttached_ = false;
};

std::unique_ptr<ScreenImage::SharedMemory> ScreenImage::SharedMemory::make(const X11Connection& connection,
                                                                           std::size_t size) {
  if (!canShareMemory(connection)) return nullptr;
  const OwnedDescriptor file(memfd_create("orvel screen", MFD_CLOEXEC));
  std::uint8_t* bytes = mapNew(file.number(), size);
  if (bytes == nullptr) return nullptr;
  std::unique_ptr<SharedMemory> memory(new SharedMemory(connection, bytes, size));
  return memory->attach(file.number()) ? std::move(memory) : nullptr;
}

ScreenImage::SharedMemory::SharedMemory(const X11Connection& connection, std::uint8_t* bytes, std::size_t size)
    : connection_(connection), bytes_(bytes), size_(size), segment_(xcb_generate_id(connection.get())) {}

ScreenImage::SharedMemory::~SharedMemory() {
  if (isAttached_) xcb_shm_detach(connection_.get(), segment_);
  munmap(bytes_, size_);
}

bool ScreenImage::SharedMemory::attach(int descriptor) {
  // The library closes what it has sent.
  const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
  if (copy < 0) return false;
  const auto asked = xcb_shm_attach_fd_checked(connection_.get(), segment_, copy, false);
  isAttached_ =
      XCBPointer<xcb_generic_error_t>(xcb_request_check(connection_.get(), asked)) == nullptr && connection_.isAlive();
  return isAttached_;
}

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

ScreenImage::~ScreenImage() = default;

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
  return awaitReply(connection_, xcb_shm_get_image_reply, asked) != nullptr;
}

bool ScreenImage::fetchCopy(const Rows& rows) {
  const auto asked =
      xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection_.root(), coordinate(area_.x),
                    coordinate(area_.y + rows.begin), length(area_.width), length(rows.end - rows.begin), allPlanes);
  const auto reply = awaitReply(connection_, xcb_get_image_reply, asked);
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
