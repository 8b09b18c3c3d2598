#include "platform/linux/tray/TraySelection.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <QCoreApplication>
#include <QGuiApplication>
#include <string>
#include <string_view>
#include <utility>

namespace orvel {
namespace {

/// The toolkit follows the first screen alone.
constexpr std::string_view selectionName = "_NET_SYSTEM_TRAY_S0";

xcb_atom_t atomOf(xcb_connection_t* connection, std::string_view name) {
  const auto asked = xcb_intern_atom(connection, false, static_cast<std::uint16_t>(name.size()), name.data());
  const X11Answer<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(connection, asked, nullptr)};
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace

TraySelection::TraySelection(std::function<void()> came) : came_(std::move(came)) {
  const auto* toolkit = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (toolkit == nullptr) return;
  connection_ = toolkit->connection();
  selection_ = atomOf(connection_, selectionName);
  manager_ = atomOf(connection_, "MANAGER");
  const auto asked = xcb_get_selection_owner(connection_, selection_);
  const X11Answer<xcb_get_selection_owner_reply_t> reply{xcb_get_selection_owner_reply(connection_, asked, nullptr)};
  if (reply) follow(reply->owner);
  QCoreApplication::instance()->installNativeEventFilter(this);
}

void TraySelection::follow(std::uint32_t owner) {
  owner_ = owner;
  if (owner == XCB_WINDOW_NONE) return;
  // As the toolkit does, which asks for the same of the same window.
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection_, owner, XCB_CW_EVENT_MASK, &events);
  xcb_flush(connection_);
}

bool TraySelection::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (eventType != "xcb_generic_event_t") return false;
  const auto type = static_cast<const xcb_generic_event_t*>(message)->response_type & x11EventTypeMask;
  if (type == XCB_CLIENT_MESSAGE) {
    const auto& announcement = *static_cast<const xcb_client_message_event_t*>(message);
    if (announcement.type != manager_ || announcement.data.data32[1] != selection_) return false;
    follow(announcement.data.data32[2]);
    came_();
  } else if (type == XCB_DESTROY_NOTIFY) {
    if (static_cast<const xcb_destroy_notify_event_t*>(message)->window == owner_) follow(XCB_WINDOW_NONE);
  }
  return false;
}

}  // namespace orvel
