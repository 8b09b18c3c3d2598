#include "platform/linux/x11/X11ActivationTokens.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <unistd.h>

#include <algorithm>
#include <cstddef>

namespace orvel {
namespace {

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char letter : text) {
    if (letter == '"' || letter == '\\') result += '\\';
    result += letter;
  }
  return result + '"';
}

}  // namespace

void StartupNotice::begin(const std::string& token, const std::string& name, const std::string& entryPath) const {
  broadcast("new: ID=" + quoted(token) + " NAME=" + quoted(name) + " SCREEN=" + std::to_string(screenNumber()) +
            " APPLICATION_ID=" + quoted(entryPath));
}

void StartupNotice::end(const std::string& token) const {
  broadcast("remove: ID=" + quoted(token));
}

void StartupNotice::broadcast(const std::string& text) const {
  xcb_connection_t* connection = connection_.get();
  // The window that sends distinguishes the parts of one text from those of others.
  const xcb_window_t sender = xcb_generate_id(connection);
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, sender, connection_.root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  xcb_client_message_event_t message{.response_type = XCB_CLIENT_MESSAGE,
                                     .format = 8,
                                     .sequence = 0,
                                     .window = sender,
                                     .type = atoms_.startupInfoBegin,
                                     .data = {}};
  const std::size_t length = text.size() + 1;  // the zero byte ends it
  for (std::size_t sent = 0; sent < length; sent += sizeof message.data.data8) {
    std::fill_n(message.data.data8, sizeof message.data.data8, std::uint8_t{0});
    const std::size_t part = std::min(sizeof message.data.data8, text.size() - std::min(sent, text.size()));
    std::copy_n(text.data() + std::min(sent, text.size()), part, message.data.data8);
    xcb_send_event(connection, false, connection_.root(), XCB_EVENT_MASK_PROPERTY_CHANGE,
                   reinterpret_cast<const char*>(&message));
    message.type = atoms_.startupInfo;
  }
  xcb_destroy_window(connection, sender);
  xcb_flush(connection);
}

int StartupNotice::screenNumber() const {
  int number = 0;
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_.get()));
  for (; screens.rem > 0 && screens.data->root != connection_.root(); xcb_screen_next(&screens)) ++number;
  return number;
}

std::string X11ActivationTokens::issue(const std::string& name, const std::string& entryPath) {
  const auto time = time_.now();
  if (time == XCB_CURRENT_TIME) return {};
  const auto count = issued_.withLock([](std::uint64_t& issued) { return ++issued; });
  // The form in which programs and window managers look for the time.
  std::string token =
      "orvel-" + std::to_string(getpid()) + "-" + std::to_string(count) + "_TIME" + std::to_string(time);
  notice_.begin(token, name, entryPath);
  return token;
}

}  // namespace orvel
