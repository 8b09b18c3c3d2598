#include "platform/linux/accessibility/AccessibleObject.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace orvel {
namespace {

constexpr auto accessible = "org.a11y.atspi.Accessible";
constexpr auto component = "org.a11y.atspi.Component";
constexpr auto application = "org.a11y.atspi.Application";
constexpr auto nullObject = "/org/a11y/atspi/null";
constexpr std::uint32_t showing = std::uint32_t{1} << 25;  // in the first word of the states
constexpr std::size_t mostChildren = 256;

int wholeNumber(double value) {
  return static_cast<int>(std::lround(value));
}

}  // namespace

AccessibleObject AccessibleObject::desktop(const AccessibleConversation& conversation) {
  return {conversation, "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"};
}

std::optional<AccessibleRole> AccessibleObject::role() const {
  const auto reply = ask(accessible, "GetRole", "(u)");
  if (!reply) return std::nullopt;
  std::uint32_t number = 0;
  g_variant_get(reply.get(), "(u)", &number);
  return static_cast<AccessibleRole>(number);
}

std::optional<Rect> AccessibleObject::extents(CoordinateType type) const {
  const auto reply = ask(component, "GetExtents", "((iiii))", g_variant_new("(u)", static_cast<std::uint32_t>(type)));
  if (!reply) return std::nullopt;
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  g_variant_get(reply.get(), "((iiii))", &x, &y, &width, &height);
  if (width <= 0 || height <= 0) return std::nullopt;
  return Rect{{static_cast<double>(x), static_cast<double>(y)},
              {static_cast<double>(width), static_cast<double>(height)}};
}

bool AccessibleObject::isShowing() const {
  const auto reply = ask(accessible, "GetState", "(au)");
  if (!reply) return false;
  const GLibPointer<GVariant> words(g_variant_get_child_value(reply.get(), 0));
  if (g_variant_n_children(words.get()) == 0) return false;
  std::uint32_t first = 0;
  g_variant_get_child(words.get(), 0, "u", &first);
  return (first & showing) != 0;
}

std::optional<std::string> AccessibleObject::name() const {
  return textProperty(accessible, "Name");
}

std::optional<std::string> AccessibleObject::toolkit() const {
  return textProperty(application, "ToolkitName");
}

std::optional<AccessibleObject> AccessibleObject::parent() const {
  const auto value = property(accessible, "Parent", "(so)");
  return value ? reference(value.get()) : std::nullopt;
}

std::vector<AccessibleObject> AccessibleObject::children() const {
  std::vector<AccessibleObject> children;
  const auto reply = ask(accessible, "GetChildren", "(a(so))");
  if (!reply) return children;
  const GLibPointer<GVariant> list(g_variant_get_child_value(reply.get(), 0));
  const std::size_t count = std::min(g_variant_n_children(list.get()), mostChildren);
  for (std::size_t index = 0; index < count; ++index) {
    const GLibPointer<GVariant> entry(g_variant_get_child_value(list.get(), index));
    if (auto child = reference(entry.get())) children.push_back(std::move(*child));
  }
  return children;
}

std::optional<AccessibleObject> AccessibleObject::objectAt(Point place, CoordinateType type) const {
  const auto reply =
      ask(component, "GetAccessibleAtPoint", "((so))",
          g_variant_new("(iiu)", wholeNumber(place.x), wholeNumber(place.y), static_cast<std::uint32_t>(type)));
  if (!reply) return std::nullopt;
  const GLibPointer<GVariant> found(g_variant_get_child_value(reply.get(), 0));
  return reference(found.get());
}

std::optional<std::uint32_t> AccessibleObject::process() const {
  const auto reply = conversation_->bus.call({.destination = "org.freedesktop.DBus",
                                              .path = "/org/freedesktop/DBus",
                                              .interface = "org.freedesktop.DBus",
                                              .method = "GetConnectionUnixProcessID",
                                              .arguments = g_variant_new("(s)", program_.c_str()),
                                              .replyType = "(u)"},
                                             conversation_->limit);
  if (!reply) return std::nullopt;
  std::uint32_t number = 0;
  g_variant_get(reply.get(), "(u)", &number);
  return number;
}

GLibPointer<GVariant> AccessibleObject::ask(const char* interface, const char* method, const char* replyType,
                                            GVariant* arguments) const {
  return conversation_->bus.call({.destination = program_.c_str(),
                                  .path = path_.c_str(),
                                  .interface = interface,
                                  .method = method,
                                  .arguments = arguments,
                                  .replyType = replyType},
                                 conversation_->limit);
}

GLibPointer<GVariant> AccessibleObject::property(const char* interface, const char* name, const char* type) const {
  const auto reply = ask("org.freedesktop.DBus.Properties", "Get", "(v)", g_variant_new("(ss)", interface, name));
  if (!reply) return nullptr;
  const GLibPointer<GVariant> box(g_variant_get_child_value(reply.get(), 0));
  GLibPointer<GVariant> value(g_variant_get_variant(box.get()));
  if (!g_variant_is_of_type(value.get(), G_VARIANT_TYPE(type))) return nullptr;
  return value;
}

std::optional<std::string> AccessibleObject::textProperty(const char* interface, const char* name) const {
  const auto value = property(interface, name, "s");
  if (!value) return std::nullopt;
  return g_variant_get_string(value.get(), nullptr);
}

std::optional<AccessibleObject> AccessibleObject::reference(GVariant* value) const {
  const char* program = nullptr;
  const char* path = nullptr;
  g_variant_get(value, "(&s&o)", &program, &path);
  if (std::string_view(path) == nullObject) return std::nullopt;
  return AccessibleObject(*conversation_, program, path);
}

}  // namespace orvel
