#include "platform/linux/x11/X11ThemeSettings.hpp"

#include "platform/linux/x11/X11Properties.hpp"

#include <cstddef>
#include <string_view>
#include <utility>

namespace orvel {
namespace {

/// The selection whose owner publishes the settings.
constexpr std::string_view settingsSelection = "_XSETTINGS_S0";

constexpr std::uint32_t watchedEvents = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
constexpr std::uint32_t longestSettings = 65536 / 4;
constexpr std::size_t headerSize = 4;
constexpr std::size_t serialSize = 4;
constexpr std::uint8_t integerType = 0;
constexpr std::uint8_t textType = 1;
constexpr std::uint8_t colourType = 2;

/// Takes values off the front of bytes. Once they do not suffice, all that is taken is empty.
class Reader {
 public:
  explicit Reader(std::span<const std::uint8_t> bytes) : rest_(bytes), isBigEndian_(!bytes.empty() && bytes[0] == 1) {}

  bool hasFailed() const { return hasFailed_; }

  std::span<const std::uint8_t> bytes(std::size_t count) {
    if (hasFailed_ || count > rest_.size()) {
      hasFailed_ = true;
      return {};
    }
    const auto taken = rest_.first(count);
    rest_ = rest_.subspan(count);
    return taken;
  }

  std::uint32_t number(std::size_t size) {
    std::uint32_t value = 0;
    const auto taken = bytes(size);
    for (std::size_t i = 0; i < taken.size(); ++i) {
      const std::size_t place = isBigEndian_ ? size - 1 - i : i;
      value |= static_cast<std::uint32_t>(taken[i]) << (8 * place);
    }
    return value;
  }

  /// Texts fill multiples of four bytes.
  std::string text(std::size_t length) {
    const auto taken = bytes(length);
    bytes((4 - length % 4) % 4);
    return {taken.begin(), taken.end()};
  }

 private:
  std::span<const std::uint8_t> rest_;
  const bool isBigEndian_;
  bool hasFailed_ = false;
};

std::map<std::string, std::string> textsOf(const X11Connection& connection, xcb_window_t manager) {
  const auto settings = namedAtom(connection.get(), "_XSETTINGS_SETTINGS");
  const std::string bytes = textIn(readProperty(connection.get(), manager, settings, longestSettings));
  return parseXSettings({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

}  // namespace

std::map<std::string, std::string> parseXSettings(std::span<const std::uint8_t> bytes) {
  std::map<std::string, std::string> texts;
  Reader reader(bytes);
  reader.bytes(headerSize + serialSize);
  for (auto left = reader.number(4); left > 0 && !reader.hasFailed(); --left) {
    const auto type = reader.number(1);
    reader.bytes(1);
    const std::string name = reader.text(reader.number(2));
    reader.bytes(serialSize);
    if (type == textType) {
      std::string text = reader.text(reader.number(4));
      if (!reader.hasFailed()) texts.emplace(name, std::move(text));
    } else if (type == integerType) {
      reader.number(4);
    } else if (type == colourType) {
      reader.bytes(8);
    } else {
      break;
    }
  }
  return texts;
}

X11ThemeSettings::X11ThemeSettings(const X11Connection& connection)
    : connection_(connection),
      selection_(namedAtom(connection.get(), settingsSelection)),
      announcement_(namedAtom(connection.get(), "MANAGER")),
      theme_(read()) {}

DesktopTheme X11ThemeSettings::theme() const {
  return theme_.withLock([](const DesktopTheme& theme) { return theme; });
}

/// Empty where nobody publishes settings. From now on the server reports their changes.
DesktopTheme X11ThemeSettings::read() {
  const auto asked = xcb_get_selection_owner(connection_.get(), selection_);
  const auto reply = awaitReply(connection_, xcb_get_selection_owner_reply, asked);
  manager_ = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
  if (manager_ == XCB_WINDOW_NONE) return {};
  xcb_change_window_attributes(connection_.get(), manager_, XCB_CW_EVENT_MASK, &watchedEvents);
  auto texts = textsOf(connection_, manager_);
  const auto iconTheme = texts.find("Net/IconThemeName");
  return {.name = texts["Net/ThemeName"],
          .font = texts["Gtk/FontName"],
          .iconTheme = iconTheme == texts.end() ? std::nullopt : std::optional(iconTheme->second)};
}

void X11ThemeSettings::observe(std::function<void()> handler) {
  handler_.withLock([&](std::function<void()>& observer) { observer = std::move(handler); });
}

void X11ThemeSettings::handle(const xcb_generic_event_t& event) {
  if (!isChange(event)) return;
  const DesktopTheme now = read();
  const DesktopTheme before = theme_.withLock([&](DesktopTheme& theme) { return std::exchange(theme, now); });
  if (now == before) return;
  const auto handler = handler_.withLock([](const std::function<void()>& observer) { return observer; });
  if (handler) handler();
}

bool X11ThemeSettings::isChange(const xcb_generic_event_t& event) const {
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
