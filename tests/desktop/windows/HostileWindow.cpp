#include "desktop/windows/WindowSpeech.hpp"

#include <gio/gio.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace orvel {
namespace {

constexpr int width = 400;
constexpr int height = 300;
constexpr int childrenWithoutEnd = 100'000;
constexpr gulong slowness = 40'000;  // microseconds for an answer

/// A window of a program that reports nonsense of its user interface: in what way is named by `mode`. Its frame is
/// reported rightly, so that the nonsense is reached.
class HostileWindow {
 public:
  explicit HostileWindow(std::string mode) : mode_(std::move(mode)) {}

  void show() {
    server_ = xcb_connect(nullptr, nullptr);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(server_)).data;
    const xcb_window_t window = xcb_generate_id(server_);
    xcb_create_window(server_, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, width, height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    // The window manager leaves it in the corner, where the test knows it to be.
    const std::array<std::uint32_t, 18> placedByUser{1};
    xcb_change_property(server_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32,
                        placedByUser.size(), placedByUser.data());
    xcb_map_window(server_, window);
    xcb_flush(server_);
  }

  /// Announces itself to the desktop, and answers from then on.
  bool speak() {
    bus_ = g_dbus_connection_new_for_address_sync(address().c_str(),
                                                  GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                                       G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
                                                  nullptr, nullptr, nullptr);
    if (bus_ == nullptr) return false;
    g_dbus_connection_add_filter(bus_, &HostileWindow::filter, this, nullptr);
    return g_dbus_connection_call_sync(bus_, "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root",
                                       "org.a11y.atspi.Socket", "Embed", g_variant_new("((so))", name(), "/root"),
                                       nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr) != nullptr;
  }

 private:
  static std::string address() {
    GDBusConnection* session = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    GVariant* reply =
        g_dbus_connection_call_sync(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", nullptr,
                                    nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    const char* address = nullptr;
    g_variant_get(reply, "(&s)", &address);
    return address;
  }

  const char* name() const { return g_dbus_connection_get_unique_name(bus_); }

  static GDBusMessage* filter(GDBusConnection* bus, GDBusMessage* message, gboolean incoming, gpointer self) {
    if (!incoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) return message;
    GDBusMessage* reply = g_dbus_message_new_method_reply(message);
    g_dbus_message_set_body(reply, static_cast<HostileWindow*>(self)->answer(message));
    g_dbus_connection_send_message(bus, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(message);
    return nullptr;
  }

  GVariant* answer(GDBusMessage* message) {
    const std::string_view method = g_dbus_message_get_member(message);
    const std::string_view path = g_dbus_message_get_path(message);
    if (mode_ == "slow") g_usleep(slowness);
    if (method == "Get") return property(g_dbus_message_get_body(message));
    if (mode_ == "wrong" && path != "/root") return g_variant_new("(s)", "something else");
    if (method == "GetRole") return g_variant_new("(u)", std::uint32_t{path == "/frame" ? 23u : 29u});
    if (method == "GetState") return g_variant_new_parsed("(@au [0xffffffff],)");
    if (method == "GetExtents") return extents(path);
    if (method == "GetChildren") return children(path);
    if (method == "GetAccessibleAtPoint") return g_variant_new("((so))", name(), other(path));
    return g_variant_new("()");
  }

  /// Everything lies in another one, and that in it.
  static const char* other(std::string_view path) { return path == "/a" ? "/b" : "/a"; }

  GVariant* property(GVariant* asked) {
    const char* property = nullptr;
    g_variant_get(asked, "(&s&s)", nullptr, &property);
    GVariant* value = g_variant_new_string("GTK");
    if (std::string_view(property) == "Parent") value = g_variant_new("(so)", name(), "/b");
    if (mode_ == "wrong" && std::string_view(property) != "ToolkitName") value = g_variant_new_int32(7);
    return g_variant_new("(v)", value);
  }

  GVariant* extents(std::string_view path) const {
    constexpr int least = std::numeric_limits<std::int32_t>::min();
    constexpr int most = std::numeric_limits<std::int32_t>::max();
    if (mode_ == "absurd" && path != "/frame") return g_variant_new("((iiii))", least, least, most, most);
    return g_variant_new("((iiii))", 0, 0, width, height);
  }

  GVariant* children(std::string_view path) {
    if (path == "/root") return g_variant_new_parsed("([(%s, objectpath '/frame')],)", name());
    GVariantBuilder list;
    g_variant_builder_init(&list, G_VARIANT_TYPE("a(so)"));
    const int count = mode_ == "endless" ? childrenWithoutEnd : 2;
    for (int index = 0; index < count; ++index) g_variant_builder_add(&list, "(so)", name(), index % 2 ? "/a" : "/b");
    return g_variant_new("(a(so))", &list);
  }

  const std::string mode_;
  xcb_connection_t* server_ = nullptr;
  GDBusConnection* bus_ = nullptr;
};

}  // namespace
}  // namespace orvel

int main(int argc, char** argv) {
  orvel::HostileWindow window(argc > 1 ? argv[1] : "");
  window.show();
  if (!window.speak()) return 1;
  orvel::say("ready");
  g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
