#include "desktop/TrayHost.hpp"

#include "desktop/ProcessTree.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace orvel {
namespace {

constexpr Milliseconds iconLookInterval{20};
constexpr Milliseconds stillness{80};
constexpr std::uint32_t darkGround = 0x202020;
constexpr std::uint32_t lightGround = 0xf0f0f0;

struct FreeMemory {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

std::uint32_t groundOf(const TrayHost::Look& look) {
  return look.isDark ? darkGround : lightGround;
}

/// As "#202020".
std::string groundName(const TrayHost::Look& look) {
  return look.isDark ? "#202020" : "#f0f0f0";
}

/// One of four words, in the order of the edges.
std::string_view byEdge(TrayHost::Edge edge, const std::array<std::string_view, 4>& words) {
  return words[static_cast<std::size_t>(edge)];
}

bool waitUntil(const std::function<bool()>& isTrue, Milliseconds limit) {
  const Deadline deadline(limit);
  while (!isTrue()) {
    if (deadline.left() == Milliseconds(0)) return false;
    std::this_thread::sleep_for(iconLookInterval);
  }
  return true;
}

}  // namespace

TrayHost::TrayHost(const VirtualDesktop& desktop, const SessionBus& bus, const Look& look)
    : desktop_(desktop),
      bus_(bus),
      look_(look),
      connection_(xcb_connect(desktop.display().c_str(), nullptr)),
      view_(desktop.display()) {}

TrayHost::~TrayHost() {
  stop();
  xcb_disconnect(connection_);
}

void TrayHost::start() {
  panel_.emplace(ChildProcess::Program{.command = command(), .environment = bus_.environment()});
  if (!waitUntil([this] { return isServing(); }, timeout)) {
    throw std::runtime_error("no tray: " + panel_->output());
  }
  waitUntil([this] { return isStill(iconPlace()); }, timeout);
}

void TrayHost::stop() {
  if (!panel_) return;
  const auto plugins = descendantsOf(panel_->pid());
  panel_.reset();
  for (const pid_t plugin : plugins) kill(plugin, SIGKILL);
  if (look_.kind == Kind::xfce) forgetXfceSettings();
  waitUntil([this] { return !isPainted(view_.picture()); }, timeout);
}

Rect TrayHost::place() const {
  constexpr double width = VirtualDesktop::width;
  constexpr double height = VirtualDesktop::height;
  switch (look_.edge) {
    case Edge::top:
      return {{0, 0}, {width, thickness}};
    case Edge::bottom:
      return {{0, height - thickness}, {width, thickness}};
    case Edge::left:
      return {{0, 0}, {thickness, height}};
    case Edge::right:
      return {{width - thickness, 0}, {thickness, height}};
  }
  return {};
}

std::optional<Rect> TrayHost::iconPlace() const {
  const Picture picture = view_.picture();
  if (!isPainted(picture)) return std::nullopt;
  const auto [origin, size] = place();
  int left = picture.width;
  int top = picture.height;
  int right = -1;
  int bottom = -1;
  for (int y = int(origin.y); y < std::min(picture.height, int(origin.y + size.height)); ++y) {
    for (int x = int(origin.x); x < std::min(picture.width, int(origin.x + size.width)); ++x) {
      if (picture.at(x, y) == groundOf(look_)) continue;
      left = std::min(left, x);
      top = std::min(top, y);
      right = std::max(right, x);
      bottom = std::max(bottom, y);
    }
  }
  if (right < 0) return std::nullopt;
  return Rect{{double(left), double(top)}, {double(right - left + 1), double(bottom - top + 1)}};
}

std::optional<Rect> TrayHost::waitForIcon(Milliseconds limit) const {
  std::optional<Rect> icon;
  const auto isThere = [&] {
    icon = iconPlace();
    return icon && isStill(icon);
  };
  return waitUntil(isThere, limit) ? icon : std::nullopt;
}

/// Whether the icons cover what they cover for a while: a panel moves them about while it makes room for one.
bool TrayHost::isStill(const std::optional<Rect>& icon) const {
  const auto moves = [&] { return iconPlace() != icon; };
  return !waitUntil(moves, stillness);
}

bool TrayHost::waitForNoIcon(Milliseconds limit) const {
  return waitUntil([this] { return !iconPlace(); }, limit);
}

bool TrayHost::clickIcon(Button button, int times) const {
  const auto icon = waitForIcon();
  if (!icon) return false;
  const auto x = static_cast<std::int16_t>(icon->centre().x);
  const auto y = static_cast<std::int16_t>(icon->centre().y);
  const auto fake = [&](std::uint8_t type, std::uint8_t detail) {
    xcb_test_fake_input(connection_, type, detail, XCB_CURRENT_TIME, XCB_NONE, x, y, 0);
  };
  fake(XCB_MOTION_NOTIFY, 0);
  for (int click = 0; click < times; ++click) {
    fake(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
    fake(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
  }
  xcb_flush(connection_);
  return true;
}

std::vector<std::string> TrayHost::command() const {
  switch (look_.kind) {
    case Kind::tint2:
      writeTint2Settings();
      return {"tint2", "-c", (desktop_.home() / "tint2rc").string()};
    case Kind::lxqt:
      writeLxqtSettings();
      return {"lxqt-panel", "-c", (desktop_.home() / "lxqt-panel.conf").string()};
    case Kind::xfce:
      writeXfceSettings();
      return {"xfce4-panel", "--disable-wm-check"};
  }
  return {};
}

void TrayHost::writeTint2Settings() const {
  constexpr std::array<std::string_view, 4> positions{"top center horizontal", "bottom center horizontal",
                                                      "center left vertical", "center right vertical"};
  std::ofstream(desktop_.home() / "tint2rc")
      << "rounded = 0\nborder_width = 0\nbackground_color = " << groundName(look_) << " 100\n"
      << "panel_items = S\npanel_background_id = 1\npanel_position = " << byEdge(look_.edge, positions)
      << "\npanel_size = 100% " << thickness << "\npanel_margin = 0 0\npanel_padding = 0 0 0\npanel_dock = 0\n"
      << "strut_policy = follow_size\nsystray_background_id = 0\n"
      << "systray_padding = 4 4 4\nsystray_icon_size = 24\n";
}

void TrayHost::writeLxqtSettings() const {
  std::ofstream(desktop_.home() / "lxqt-panel.conf")
      << "panels=panel\n[panel]\nplugins=notifier\nposition=" << byEdge(look_.edge, {"Top", "Bottom", "Left", "Right"})
      << "\ndesktop=0\npanelSize=" << thickness << "\niconSize=24\nopacity=100\nbackground-color=" << groundName(look_)
      << "\n[notifier]\ntype=statusnotifier\nalignment=Right\n";
}

void TrayHost::writeXfceSettings() const {
  const auto folder = desktop_.home() / ".config/xfce4/xfconf/xfce-perchannel-xml";
  std::filesystem::create_directories(folder);
  const double part = (groundOf(look_) & 0xff) / 255.0;
  const bool isVertical = look_.edge == Edge::left || look_.edge == Edge::right;
  std::ofstream file(folder / "xfce4-panel.xml");
  const auto property = [&](std::string_view name, std::string_view type, const auto& value) {
    file << "<property name=\"" << name << "\" type=\"" << type << "\" value=\"" << value << "\"/>\n";
  };
  file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<channel name=\"xfce4-panel\" version=\"1.0\">\n";
  property("configver", "int", 2);
  file << "<property name=\"panels\" type=\"array\"><value type=\"int\" value=\"1\"/>\n"
       << "<property name=\"panel-1\" type=\"empty\">\n";
  property("position", "string", byEdge(look_.edge, {"p=6;x=0;y=0", "p=8;x=0;y=0", "p=6;x=0;y=0", "p=2;x=0;y=0"}));
  property("mode", "uint", isVertical ? 1 : 0);
  property("length", "uint", 100);
  property("position-locked", "bool", "true");
  property("size", "uint", thickness);
  property("background-style", "uint", 1);
  file << "<property name=\"background-rgba\" type=\"array\">\n";
  for (const double value : {part, part, part, 1.0}) file << "<value type=\"double\" value=\"" << value << "\"/>\n";
  file << "</property>\n<property name=\"plugin-ids\" type=\"array\"><value type=\"int\" value=\"1\"/></property>\n"
       << "</property>\n</property>\n<property name=\"plugins\" type=\"empty\">\n";
  property("plugin-1", "string", "systray");
  file << "</property>\n</channel>\n";
}

/// Ends the keeper of the settings, who would hand out those that it has read, and not those of the next panel.
void TrayHost::forgetXfceSettings() const {
  const TimeLimit limit(timeout);
  const auto bus = MessageBus::open(bus_.address(), limit);
  if (!bus) return;
  const auto reply = bus->call({.destination = "org.freedesktop.DBus",
                                .path = "/org/freedesktop/DBus",
                                .interface = "org.freedesktop.DBus",
                                .method = "GetConnectionUnixProcessID",
                                .arguments = g_variant_new("(s)", "org.xfce.Xfconf"),
                                .replyType = "(u)"},
                               limit);
  if (!reply) return;
  std::uint32_t process = 0;
  g_variant_get(reply.get(), "(u)", &process);
  kill(static_cast<pid_t>(process), SIGKILL);
}

bool TrayHost::isServing() const {
  const bool hasProtocols =
      (look_.kind == Kind::lxqt || ownsXEmbedTray()) && (look_.kind == Kind::tint2 || isStatusNotifierHost());
  if (!hasProtocols) return false;
  return isPainted(view_.picture());
}

/// Whether the panel can be seen. Its icons are at one of its ends.
bool TrayHost::isPainted(const Picture& picture) const {
  if (picture.width == 0) return false;
  const Point middle = place().centre();
  return picture.at(int(middle.x), int(middle.y)) == groundOf(look_);
}

bool TrayHost::ownsXEmbedTray() const {
  constexpr std::string_view name = "_NET_SYSTEM_TRAY_S0";
  const auto atomAsked = xcb_intern_atom(connection_, 0, name.size(), name.data());
  const std::unique_ptr<xcb_intern_atom_reply_t, FreeMemory> atom(
      xcb_intern_atom_reply(connection_, atomAsked, nullptr));
  if (!atom) return false;
  const auto asked = xcb_get_selection_owner(connection_, atom->atom);
  const std::unique_ptr<xcb_get_selection_owner_reply_t, FreeMemory> reply(
      xcb_get_selection_owner_reply(connection_, asked, nullptr));
  return reply && reply->owner != XCB_NONE;
}

bool TrayHost::isStatusNotifierHost() const {
  const TimeLimit limit(timeout);
  const auto bus = MessageBus::open(bus_.address(), limit);
  if (!bus) return false;
  const auto reply =
      bus->call({.destination = "org.kde.StatusNotifierWatcher",
                 .path = "/StatusNotifierWatcher",
                 .interface = "org.freedesktop.DBus.Properties",
                 .method = "Get",
                 .arguments = g_variant_new("(ss)", "org.kde.StatusNotifierWatcher", "IsStatusNotifierHostRegistered"),
                 .replyType = "(v)"},
                limit);
  if (!reply) return false;
  const GLibPointer<GVariant> box(g_variant_get_child_value(reply.get(), 0));
  const GLibPointer<GVariant> value(g_variant_get_variant(box.get()));
  return g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(value.get());
}

const char* nameOf(TrayHost::Kind kind) {
  switch (kind) {
    case TrayHost::Kind::tint2:
      return "tint2";
    case TrayHost::Kind::lxqt:
      return "lxqt";
    case TrayHost::Kind::xfce:
      return "xfce";
  }
  return "";
}

std::string nameOf(const TrayHost::Look& look) {
  constexpr std::array edges{"Top", "Bottom", "Left", "Right"};
  return std::string(nameOf(look.kind)) + edges.at(static_cast<std::size_t>(look.edge));
}

void PrintTo(const TrayHost::Look& look, std::ostream* out) {
  *out << nameOf(look);
}

}  // namespace orvel
