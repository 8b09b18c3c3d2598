#include "platform/linux/x11/X11Tray.hpp"

#include "platform/linux/x11/X11Properties.hpp"

#include <QCoreApplication>
#include <QGuiApplication>
#include <string>
#include <string_view>
#include <utility>

namespace orvel {
namespace {

/// The toolkit follows the first screen alone.
constexpr std::string_view traySelection = "_NET_SYSTEM_TRAY_S0";

constexpr std::uint32_t requestToDock = 0;
constexpr std::uint8_t translucentDepth = 32;

/// The number of bits of a visual's pixels; 0 for one that is not there.
std::uint8_t depthOf(xcb_connection_t* connection, xcb_visualid_t visual) {
  const auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (auto depth = xcb_screen_allowed_depths_iterator(screen.data); depth.rem != 0; xcb_depth_next(&depth)) {
    for (auto type = xcb_depth_visuals_iterator(depth.data); type.rem != 0; xcb_visualtype_next(&type)) {
      if (type.data->visual_id == visual) return depth.data->depth;
    }
  }
  return 0;
}

}  // namespace

X11Tray::X11Tray(std::function<void()> changed) : changed_(std::move(changed)) {
  const auto* toolkit = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (toolkit == nullptr) return;
  connection_ = toolkit->connection();
  selection_ = namedAtom(connection_, traySelection);
  manager_ = namedAtom(connection_, "MANAGER");
  const auto asked = xcb_get_selection_owner(connection_, selection_);
  const auto reply = awaitReply(connection_, xcb_get_selection_owner_reply, asked);
  if (reply) follow(reply->owner);
  QCoreApplication::instance()->installNativeEventFilter(this);
}

void X11Tray::follow(std::uint32_t owner) {
  if (owner != owner_) ++ownership_;
  owner_ = owner;
  if (owner == XCB_WINDOW_NONE) return;
  // As the toolkit does, which asks for the same of the same window.
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection_, owner, XCB_CW_EVENT_MASK, &events);
  xcb_flush(connection_);
}

bool X11Tray::isTranslucent() const {
  if (!isOwned()) return false;
  const auto name = namedAtom(connection_, "_NET_SYSTEM_TRAY_VISUAL");
  const auto visual = numbersIn(readProperty(connection_, owner_, name, 1, XCB_ATOM_VISUALID));
  return visual.size() == 1 && depthOf(connection_, visual.front()) == translucentDepth;
}

void X11Tray::requestDock(std::uint32_t window) const {
  if (!isOwned()) return;
  xcb_client_message_event_t request{};
  request.response_type = XCB_CLIENT_MESSAGE;
  request.format = 32;
  request.window = owner_;
  request.type = namedAtom(connection_, "_NET_SYSTEM_TRAY_OPCODE");
  request.data.data32[0] = XCB_CURRENT_TIME;
  request.data.data32[1] = requestToDock;
  request.data.data32[2] = window;
  xcb_send_event(connection_, false, owner_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&request));
  xcb_flush(connection_);
}

bool X11Tray::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (eventType != "xcb_generic_event_t") return false;
  const auto type = static_cast<const xcb_generic_event_t*>(message)->response_type & x11EventTypeMask;
  if (type == XCB_CLIENT_MESSAGE) {
    const auto& announcement = *static_cast<const xcb_client_message_event_t*>(message);
    if (announcement.type != manager_ || announcement.data.data32[1] != selection_) return false;
    follow(announcement.data.data32[2]);
    changed_();
  } else if (type == XCB_DESTROY_NOTIFY) {
    if (static_cast<const xcb_destroy_notify_event_t*>(message)->window != owner_) return false;
    follow(XCB_WINDOW_NONE);
    changed_();
  }
  return false;
}

}  // namespace orvel
