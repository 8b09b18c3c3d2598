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
  QCoreApplication::instance()->installNativeEventFilter(this);
}

bool TraySelection::isOwned() const {
  if (connection_ == nullptr) return false;
  const auto asked = xcb_get_selection_owner(connection_, selection_);
  const X11Answer<xcb_get_selection_owner_reply_t> reply{xcb_get_selection_owner_reply(connection_, asked, nullptr)};
  return reply && reply->owner != XCB_WINDOW_NONE;
}

bool TraySelection::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (eventType != "xcb_generic_event_t") return false;
  const auto& event = *static_cast<const xcb_client_message_event_t*>(message);
  const bool isAnnouncement = (event.response_type & x11EventTypeMask) == XCB_CLIENT_MESSAGE &&
                              event.type == manager_ && event.data.data32[1] == selection_;
  if (isAnnouncement) came_();
  return false;
}

}  // namespace orvel
