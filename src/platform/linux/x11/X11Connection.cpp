#include "platform/linux/x11/X11Connection.hpp"

#include <sys/socket.h>
#include <xcb/randr.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace orvel {
namespace {

constexpr std::uint8_t errorResponse = 0;
constexpr std::chrono::seconds listenerShutdownTimeout{1};

/// The connection writes without a guard of its own: a server that goes at the wrong moment would end this program.
void surviveBrokenPipes() {
  struct sigaction current = {};
  if (sigaction(SIGPIPE, nullptr, &current) == 0 && current.sa_handler == SIG_DFL) signal(SIGPIPE, SIG_IGN);
}

const xcb_screen_t* screenNumbered(xcb_connection_t* connection, int number) {
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; screens.rem > 0 && number > 0; --number) xcb_screen_next(&screens);
  return screens.rem > 0 ? screens.data : nullptr;
}

constexpr std::string_view xwaylandExtension = "XWAYLAND";
constexpr std::string_view outputPrefix = "XWAYLAND";

bool hasXwaylandExtension(const X11Connection& connection) {
  const auto asked = xcb_query_extension(connection.get(), xwaylandExtension.size(), xwaylandExtension.data());
  const auto reply = awaitReply(connection, xcb_query_extension_reply, asked);
  return reply && reply->present;
}

std::string outputName(const X11Connection& connection, xcb_randr_get_output_info_cookie_t asked) {
  const auto info = awaitReply(connection, xcb_randr_get_output_info_reply, asked);
  if (!info) return {};
  return {reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())), info->name_len};
}

/// Nothing when the server knows no outputs.
std::optional<std::vector<std::string>> outputNames(const X11Connection& connection) {
  if (connection.extension(xcb_randr_id) == nullptr) return std::nullopt;
  const auto asked = xcb_randr_get_screen_resources_current(connection.get(), connection.root());
  const auto resources = awaitReply(connection, xcb_randr_get_screen_resources_current_reply, asked);
  if (!resources) return std::nullopt;
  const std::span outputs(xcb_randr_get_screen_resources_current_outputs(resources.get()), resources->num_outputs);
  std::vector<xcb_randr_get_output_info_cookie_t> cookies;
  cookies.reserve(outputs.size());
  for (const xcb_randr_output_t output : outputs) {
    cookies.push_back(xcb_randr_get_output_info(connection.get(), output, XCB_CURRENT_TIME));
  }
  std::vector<std::string> names;
  names.reserve(cookies.size());
  for (const auto& cookie : cookies) names.push_back(outputName(connection, cookie));
  return names;
}

bool isServerXwayland(const X11Connection& connection) {
  // Servers before 23.1 do not have the extension yet.
  if (hasXwaylandExtension(connection)) return true;
  const auto names = outputNames(connection);
  return names && areXwaylandOutputs(*names);
}

}  // namespace

std::unique_ptr<X11Connection> X11Connection::open(const std::string& display) {
  surviveBrokenPipes();
  int number = 0;
  xcb_connection_t* connection = xcb_connect(display.c_str(), &number);
  const bool connected = xcb_connection_has_error(connection) == 0;
  const xcb_screen_t* screen = connected ? screenNumbered(connection, number) : nullptr;
  if (screen == nullptr) {
    xcb_disconnect(connection);
    return nullptr;
  }
  return std::unique_ptr<X11Connection>(new X11Connection(connection, screen->root));
}

X11Connection::X11Connection(xcb_connection_t* connection, xcb_window_t root)
    : connection_(connection), root_(root), mailbox_(xcb_generate_id(connection)) {
  // Selected here for all leaves: a program has one selection per window, and a second would replace the first.
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &events);
  xcb_create_window(connection_, XCB_COPY_FROM_PARENT, mailbox_, root_, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                    XCB_COPY_FROM_PARENT, 0, nullptr);
  xcb_flush(connection_);
}

X11Connection::~X11Connection() {
  stopListening();
  xcb_disconnect(connection_);
}

bool X11Connection::listen(Handlers handlers) {
  try {
    thread_ = std::thread([this, handlers = std::move(handlers)] {
      dispatch(handlers);
      threadEnded_.release();
    });
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

void X11Connection::dispatch(const Handlers& handlers) const {
  while (const XCBPointer<xcb_generic_event_t> event{xcb_wait_for_event(connection_)}) {
    if (stopping_ && isStopMessage(*event)) return;
    // Errors end here: a request that the server refuses has simply had no effect.
    if (event->response_type != errorResponse) handlers.event(*event);
  }
  if (!stopping_) handlers.ended();
}

void X11Connection::stopListening() {
  if (stopping_.exchange(true) || !thread_.joinable()) return;
  // The server forgets what it has not taken yet when a connection ends; this message comes back behind all that.
  sendStopMessage();
  if (!threadEnded_.try_acquire_for(listenerShutdownTimeout)) shutDown();
  thread_.join();
}

void X11Connection::shutDown() const {
  ::shutdown(xcb_get_file_descriptor(connection_), SHUT_RDWR);
}

void X11Connection::sendStopMessage() const {
  const xcb_client_message_event_t message{.response_type = XCB_CLIENT_MESSAGE,
                                           .format = 32,
                                           .sequence = 0,
                                           .window = mailbox_,
                                           .type = XCB_ATOM_NOTICE,
                                           .data = {}};
  xcb_send_event(connection_, false, mailbox_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
  xcb_flush(connection_);
}

bool X11Connection::isStopMessage(const xcb_generic_event_t& event) const {
  return (event.response_type & x11EventTypeMask) == XCB_CLIENT_MESSAGE &&
         reinterpret_cast<const xcb_client_message_event_t&>(event).window == mailbox_;
}

const xcb_query_extension_reply_t* X11Connection::extension(xcb_extension_t& name) const {
  const xcb_query_extension_reply_t* reply = xcb_get_extension_data(connection_, &name);
  return reply != nullptr && reply->present ? reply : nullptr;
}

bool X11Connection::isXwayland() const {
  std::call_once(askedForXwayland_, [this] { isXwayland_ = isServerXwayland(*this); });
  return isXwayland_;
}

bool areXwaylandOutputs(std::span<const std::string> names) {
  // A server of its own lists its outputs whether or not a monitor is connected to them; Xwayland has one for each
  // monitor, and none where the desktop has none yet.
  return names.empty() ||
         std::ranges::any_of(names, [](const std::string& name) { return name.starts_with(outputPrefix); });
}

}  // namespace orvel
