#include "desktop/AccessibleProgram.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace orvel {
namespace {

constexpr auto root = "/org/a11y/atspi/accessible/root";
constexpr auto accessible = "org.a11y.atspi.Accessible";
constexpr auto action = "org.a11y.atspi.Action";
constexpr int deepest = 50;
constexpr Milliseconds lookInterval{20};
constexpr Milliseconds answerLimit{2000};

// The numbers of the states that matter here.
constexpr int checkedState = 4;
constexpr int enabledState = 8;
constexpr int expandableState = 9;
constexpr int expandedState = 10;
constexpr int focusedState = 12;
constexpr int showingState = 25;

std::string accessibilityAddress(const SessionBus& session) {
  const auto bus = MessageBus::open(session.address(), TimeLimit(timeout));
  if (!bus) throw std::runtime_error("no message bus");
  const auto reply = bus->call({.destination = "org.a11y.Bus",
                                .path = "/org/a11y/bus",
                                .interface = "org.a11y.Bus",
                                .method = "GetAddress",
                                .replyType = "(s)"},
                               TimeLimit(timeout));
  if (!reply) throw std::runtime_error("no bus of accessibility");
  const char* address = nullptr;
  g_variant_get(reply.get(), "(&s)", &address);
  return address;
}

std::optional<std::uint32_t> processOf(const MessageBus& bus, const char* name) {
  const auto reply = bus.call({.destination = "org.freedesktop.DBus",
                               .path = "/org/freedesktop/DBus",
                               .interface = "org.freedesktop.DBus",
                               .method = "GetConnectionUnixProcessID",
                               .arguments = g_variant_new("(s)", name),
                               .replyType = "(u)"},
                              TimeLimit(answerLimit));
  if (!reply) return std::nullopt;
  std::uint32_t number = 0;
  g_variant_get(reply.get(), "(u)", &number);
  return number;
}

bool holds(GVariant* words, int state) {
  if (g_variant_n_children(words) == 0) return false;
  std::uint32_t first = 0;
  g_variant_get_child(words, 0, "u", &first);
  return (first >> state & 1) != 0;
}

std::string described(const AccessibleProgram::Nodes& nodes) {
  std::ostringstream lines;
  for (const auto& node : nodes) lines << "\n  " << node.role << " \"" << node.name << '"';
  return lines.str();
}

}  // namespace

AccessibleProgram::AccessibleProgram(const SessionBus& bus, pid_t process, Milliseconds timeLimit)
    : bus_(MessageBus::open(accessibilityAddress(bus), TimeLimit(timeout))) {
  if (!bus_) throw std::runtime_error("no bus of accessibility");
  const TimeLimit limit(timeLimit);
  while (!findProgram(process, limit)) {
    if (limit.hasPassed()) throw std::runtime_error("the program does not report its user interface");
    std::this_thread::sleep_for(lookInterval);
  }
}

bool AccessibleProgram::findProgram(pid_t process, const TimeLimit& limit) {
  const auto reply = bus_->call({.destination = "org.a11y.atspi.Registry",
                                 .path = root,
                                 .interface = accessible,
                                 .method = "GetChildren",
                                 .replyType = "(a(so))"},
                                limit);
  if (!reply) return false;
  const GLibPointer<GVariant> programs(g_variant_get_child_value(reply.get(), 0));
  for (std::size_t index = 0; index < g_variant_n_children(programs.get()); ++index) {
    const char* name = nullptr;
    g_variant_get_child(programs.get(), index, "(&s&o)", &name, nullptr);
    if (processOf(*bus_, name) == static_cast<std::uint32_t>(process)) program_ = name;
  }
  return !program_.empty();
}

AccessibleProgram::Nodes AccessibleProgram::showing() const {
  Nodes nodes;
  for (const auto& window : childrenOf(root)) addShowing(nodes, window, 0);
  return nodes;
}

std::vector<std::string> AccessibleProgram::names(const std::string& role) const {
  std::vector<std::string> names;
  for (const auto& node : showing()) {
    if (!node.name.empty() && (role.empty() || node.role == role)) names.push_back(node.name);
  }
  return names;
}

std::optional<AccessibleNode> AccessibleProgram::find(const std::string& role, const std::string& name) const {
  const auto nodes = showing();
  const auto found = std::find_if(nodes.begin(), nodes.end(),
                                  [&](const auto& node) { return node.role == role && node.name == name; });
  if (found == nodes.end()) return std::nullopt;
  return *found;
}

std::optional<AccessibleNode> AccessibleProgram::focused() const {
  const auto nodes = showing();
  const auto found = std::find_if(nodes.begin(), nodes.end(), [](const auto& node) { return node.isFocused; });
  if (found == nodes.end()) return std::nullopt;
  return *found;
}

bool AccessibleProgram::waitFor(const std::function<bool(const Nodes&)>& isRight, Milliseconds limit) const {
  const Deadline deadline(limit);
  while (!isRight(showing())) {
    if (deadline.left() == Milliseconds(0)) return false;
    std::this_thread::sleep_for(lookInterval);
  }
  return true;
}

AccessibleNode AccessibleProgram::waitFor(const std::string& role, const std::string& name) const {
  const Deadline deadline(timeout);
  while (true) {
    if (const auto found = find(role, name)) return *found;
    if (deadline.left() == Milliseconds(0)) {
      throw std::runtime_error("no " + role + " \"" + name + "\" among" + described(showing()));
    }
    std::this_thread::sleep_for(lookInterval);
  }
}

bool AccessibleProgram::press(const std::string& role, const std::string& name) const {
  const std::string path = waitFor(role, name).path;
  const int index = pressingAction(path);
  if (index < 0) return false;
  const auto reply = ask(path, action, "DoAction", "(b)", g_variant_new("(i)", index));
  if (!reply) return false;
  gboolean isDone = FALSE;
  g_variant_get(reply.get(), "(b)", &isDone);
  return isDone;
}

void AccessibleProgram::listen() {
  bus_->observe([hearing = hearing_](GDBusConnection*, GDBusMessage* message) {
    hear(*hearing, message);
    return false;
  });
  const std::string rule = "type='signal',interface='org.a11y.atspi.Event.Object',sender='" + program_ + "'";
  bus_->call({.destination = "org.freedesktop.DBus",
              .path = "/org/freedesktop/DBus",
              .interface = "org.freedesktop.DBus",
              .method = "AddMatch",
              .arguments = g_variant_new("(s)", rule.c_str())},
             TimeLimit(answerLimit));
  // Toolkits send only what somebody has asked for.
  for (const char* event : {"object:announcement", "object:state-changed:showing"}) {
    bus_->call({.destination = "org.a11y.atspi.Registry",
                .path = "/org/a11y/atspi/registry",
                .interface = "org.a11y.atspi.Registry",
                .method = "RegisterEvent",
                .arguments = g_variant_new("(s)", event)},
               TimeLimit(answerLimit));
  }
}

/// The arguments of every event begin with a detail, two numbers, and a value.
void AccessibleProgram::hear(Hearing& hearing, GDBusMessage* message) {
  GVariant* arguments = g_dbus_message_get_body(message);
  const char* member = g_dbus_message_get_member(message);
  if (arguments == nullptr || member == nullptr || g_variant_n_children(arguments) < 4) return;
  if (!g_str_has_prefix(g_variant_get_type_string(arguments), "(siiv")) return;
  const char* detail = nullptr;
  std::int32_t isOn = 0;
  g_variant_get_child(arguments, 0, "&s", &detail);
  g_variant_get_child(arguments, 1, "i", &isOn);
  if (member == std::string_view("StateChanged") && detail == std::string_view("showing") && isOn == 1) {
    hearing.withLock([&](auto& heard) { heard.push_back({.text = {}, .path = g_dbus_message_get_path(message)}); });
  }
  if (member != std::string_view("Announcement")) return;
  GVariant* value = nullptr;
  g_variant_get_child(arguments, 3, "v", &value);
  const GLibPointer<GVariant> owned(value);
  if (!g_variant_is_of_type(value, G_VARIANT_TYPE_STRING)) return;
  hearing.withLock([&](auto& heard) { heard.push_back({.text = g_variant_get_string(value, nullptr), .path = {}}); });
}

std::string AccessibleProgram::spoken(const Heard& heard) const {
  if (heard.path.empty()) return heard.text;
  if (textAnswer(heard.path, accessible, "GetRoleName") != "notification") return {};
  return textProperty(heard.path, accessible, "Name");
}

bool AccessibleProgram::waitForAnnouncement(const std::string& text) const {
  const Deadline deadline(timeout);
  while (true) {
    const auto heard = hearing_->withLock([](const auto& all) { return all; });
    if (std::ranges::any_of(heard, [&](const Heard& one) { return spoken(one) == text; })) return true;
    if (deadline.left() == Milliseconds(0)) return false;
    std::this_thread::sleep_for(lookInterval);
  }
}

AccessibleNode AccessibleProgram::node(const std::string& path) const {
  AccessibleNode node;
  node.path = path;
  node.name = textProperty(path, accessible, "Name");
  node.description = textProperty(path, accessible, "Description");
  node.role = textAnswer(path, accessible, "GetRoleName");
  if (const auto states = ask(path, accessible, "GetState", "(au)")) {
    const GLibPointer<GVariant> words(g_variant_get_child_value(states.get(), 0));
    node.isShowing = holds(words.get(), showingState);
    node.isEnabled = holds(words.get(), enabledState);
    node.isFocused = holds(words.get(), focusedState);
    node.isChecked = holds(words.get(), checkedState);
    node.isExpandable = holds(words.get(), expandableState);
    node.isExpanded = holds(words.get(), expandedState);
  }
  if (const auto extents = ask(path, "org.a11y.atspi.Component", "GetExtents", "((iiii))", g_variant_new("(u)", 0))) {
    std::array<std::int32_t, 4> sides{};
    g_variant_get(extents.get(), "((iiii))", &sides[0], &sides[1], &sides[2], &sides[3]);
    node.place = {{double(sides[0]), double(sides[1])}, {double(sides[2]), double(sides[3])}};
  }
  node.text = textAnswer(path, "org.a11y.atspi.Text", "GetText", g_variant_new("(ii)", 0, -1));
  return node;
}

std::vector<std::string> AccessibleProgram::childrenOf(const std::string& path) const {
  std::vector<std::string> children;
  const auto reply = ask(path, accessible, "GetChildren", "(a(so))");
  if (!reply) return children;
  const GLibPointer<GVariant> list(g_variant_get_child_value(reply.get(), 0));
  for (std::size_t index = 0; index < g_variant_n_children(list.get()); ++index) {
    const char* child = nullptr;
    g_variant_get_child(list.get(), index, "(&s&o)", nullptr, &child);
    children.emplace_back(child);
  }
  return children;
}

void AccessibleProgram::addShowing(Nodes& nodes, const std::string& path, int depth) const {
  if (auto shown = node(path); shown.isShowing) nodes.push_back(std::move(shown));
  if (depth == deepest) return;
  for (const auto& child : childrenOf(path)) addShowing(nodes, child, depth + 1);
}

/// The number of the action that a click does, among others such as that which gives the keyboard; -1 without one.
int AccessibleProgram::pressingAction(const std::string& path) const {
  const auto reply = ask(path, action, "GetActions", "(a(sss))");
  if (!reply) return -1;
  const GLibPointer<GVariant> list(g_variant_get_child_value(reply.get(), 0));
  for (std::size_t index = 0; index < g_variant_n_children(list.get()); ++index) {
    const char* name = nullptr;
    g_variant_get_child(list.get(), index, "(&s&s&s)", &name, nullptr, nullptr);
    for (const std::string_view pressing : {"Press", "Toggle", "click"}) {
      if (name == pressing) return static_cast<int>(index);
    }
  }
  return -1;
}

std::string AccessibleProgram::textProperty(const std::string& path, const char* interface,
                                            const char* property) const {
  const auto reply =
      ask(path, "org.freedesktop.DBus.Properties", "Get", "(v)", g_variant_new("(ss)", interface, property));
  if (!reply) return {};
  const GLibPointer<GVariant> box(g_variant_get_child_value(reply.get(), 0));
  const GLibPointer<GVariant> value(g_variant_get_variant(box.get()));
  return g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING) ? g_variant_get_string(value.get(), nullptr) : "";
}

std::string AccessibleProgram::textAnswer(const std::string& path, const char* interface, const char* method,
                                          GVariant* arguments) const {
  const auto reply = ask(path, interface, method, "(s)", arguments);
  if (!reply) return {};
  const char* characters = nullptr;
  g_variant_get(reply.get(), "(&s)", &characters);
  return characters;
}

GLibPointer<GVariant> AccessibleProgram::ask(const std::string& path, const char* interface, const char* method,
                                             const char* replyType, GVariant* arguments) const {
  return bus_->call({.destination = program_.c_str(),
                     .path = path.c_str(),
                     .interface = interface,
                     .method = method,
                     .arguments = arguments,
                     .replyType = replyType},
                    TimeLimit(answerLimit));
}

}  // namespace orvel
