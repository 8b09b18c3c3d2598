#include "bench/Onlooker.hpp"

#include "desktop/Timeout.hpp"

#include <poll.h>
#include <xcb/damage.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <utility>

namespace orvel::bench {
namespace {

struct FreeMemory {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

template <class Content>
using Answer = std::unique_ptr<Content, FreeMemory>;

constexpr std::uint8_t eventTypeMask = 0x7f;

}  // namespace

Onlooker::Onlooker(const std::string& display)
    : connection_(xcb_connect(display.c_str(), nullptr)),
      root_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root) {
  const auto* damage = xcb_get_extension_data(connection_, &xcb_damage_id);
  if (damage == nullptr || damage->present == 0) throw std::runtime_error("the server does not report what is drawn");
  drawn_ = damage->first_event;
  const Answer<xcb_damage_query_version_reply_t> version(xcb_damage_query_version_reply(
      connection_, xcb_damage_query_version(connection_, XCB_DAMAGE_MAJOR_VERSION, XCB_DAMAGE_MINOR_VERSION), nullptr));
  xcb_damage_create(connection_, xcb_generate_id(connection_), root_, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
  xcb_flush(connection_);
}

Onlooker::~Onlooker() {
  xcb_disconnect(connection_);
}

void Onlooker::lookAt(const Rect& part) {
  part_ = part;
  seen_ = look();
}

Onlooker::Moment Onlooker::seeNewLook() {
  const Deadline deadline(timeout);
  bool hasChanged = false;
  Moment moment{};
  while (waitForDrawing(hasChanged ? stillness : deadline.left())) {
    Pixels now = look();
    if (now == seen_) continue;
    moment = std::chrono::steady_clock::now();
    hasChanged = true;
    seen_ = std::move(now);
    if (deadline.left() == Milliseconds(0)) throw std::runtime_error("the screen does not come to rest");
  }
  if (!hasChanged) throw std::runtime_error("nothing new is seen on the screen");
  return moment;
}

bool Onlooker::waitForDrawing(std::chrono::milliseconds limit) {
  const Deadline deadline(limit);
  while (!takeDrawings()) {
    pollfd awaited{xcb_get_file_descriptor(connection_), POLLIN, 0};
    if (poll(&awaited, 1, static_cast<int>(deadline.left().count())) <= 0) return false;
  }
  return true;
}

/// Whether something was drawn. One look will do for all of it.
bool Onlooker::takeDrawings() {
  bool isDrawn = false;
  while (const Answer<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
    if ((event->response_type & eventTypeMask) == drawn_ + XCB_DAMAGE_NOTIFY) isDrawn = true;
  }
  return isDrawn;
}

Onlooker::Pixels Onlooker::look() {
  const auto asked =
      xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, static_cast<std::int16_t>(part_.origin.x),
                    static_cast<std::int16_t>(part_.origin.y), static_cast<std::uint16_t>(part_.size.width),
                    static_cast<std::uint16_t>(part_.size.height), ~0U);
  const Answer<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection_, asked, nullptr));
  if (!reply) throw std::runtime_error("the screen cannot be seen");
  const std::uint8_t* first = xcb_get_image_data(reply.get());
  return {first, first + xcb_get_image_data_length(reply.get())};
}

void Onlooker::click(const Point& place) {
  fake(XCB_MOTION_NOTIFY, 0, place);
  fake(XCB_BUTTON_PRESS, XCB_BUTTON_INDEX_1);
  fake(XCB_BUTTON_RELEASE, XCB_BUTTON_INDEX_1);
  xcb_flush(connection_);
}

void Onlooker::press(Key key) {
  fake(XCB_KEY_PRESS, static_cast<std::uint8_t>(key));
  fake(XCB_KEY_RELEASE, static_cast<std::uint8_t>(key));
  xcb_flush(connection_);
}

void Onlooker::fake(std::uint8_t type, std::uint8_t detail, const Point& place) {
  xcb_test_fake_input(connection_, type, detail, XCB_CURRENT_TIME, XCB_NONE, static_cast<std::int16_t>(place.x),
                      static_cast<std::int16_t>(place.y), 0);
}

}  // namespace orvel::bench
