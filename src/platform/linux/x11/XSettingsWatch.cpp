#include "platform/linux/x11/XSettingsWatch.hpp"

#include "platform/linux/x11/NamedAtom.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/XSettings.hpp"

namespace orvel {
namespace {

constexpr std::uint32_t watchedEvents = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;

}  // namespace

XSettingsWatch::XSettingsWatch(const X11Connection& connection)
    : connection_(connection),
      selection_(namedAtom(connection, xsettingsSelection)),
      announcement_(namedAtom(connection, "MANAGER")) {}

std::map<std::string, std::string> XSettingsWatch::read() {
  const auto asked = xcb_get_selection_owner(connection_.get(), selection_);
  const X11Answer<xcb_get_selection_owner_reply_t> reply{
      xcb_get_selection_owner_reply(connection_.get(), asked, nullptr)};
  manager_ = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
  if (manager_ == XCB_WINDOW_NONE) return {};
  xcb_change_window_attributes(connection_.get(), manager_, XCB_CW_EVENT_MASK, &watchedEvents);
  return readXSettings(connection_);
}

bool XSettingsWatch::tellsOfChange(const xcb_generic_event_t& event) const {
  switch (event.response_type & x11EventTypeMask) {
    case XCB_PROPERTY_NOTIFY:
      return reinterpret_cast<const xcb_property_notify_event_t&>(event).window == manager_;
    case XCB_DESTROY_NOTIFY:
      return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == manager_;
    case XCB_CLIENT_MESSAGE: {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
      return message.type == announcement_ && message.data.data32[1] == selection_;
    }
    default:
      return false;
  }
}

}  // namespace orvel
