// A small program of somebody else, with plain windows: PlainWindow INSTANCE CLASS [OPTION ...]. It ends when its last
// window is closed, or the server goes. Options: title=TEXT, gtk=IDENTIFIER, type=DIALOG (or another), windows=NUMBER,
// dialog (the second window serves the first), skip (no window is in the taskbar), refuse (closes nothing),
// unasked (knows no request to close, as a game may), hidden (shows no window), report=FILE (writes down the
// circumstances of its start).

#include <sys/resource.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Options = std::map<std::string, std::string>;

Options optionsOf(const std::vector<std::string>& arguments) {
  Options options;
  for (const std::string& argument : arguments) {
    const auto equals = argument.find('=');
    options[argument.substr(0, equals)] = equals == std::string::npos ? "" : argument.substr(equals + 1);
  }
  return options;
}

void report(const std::string& path) {
  std::ofstream out(path + ".new");
  rlimit files{};
  getrlimit(RLIMIT_NOFILE, &files);
  out << "process " << getpid() << "\nopen files " << files.rlim_cur << "\n";
  out << "own session " << (getsid(0) == getpid() ? "yes" : "no") << "\n";
  for (int number = 0; number < 3; ++number) {
    out << number << " " << std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(number)).string() << "\n";
  }
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("SigBlk") || line.starts_with("SigIgn")) out << line << "\n";
  }
  const char* startup = std::getenv("DESKTOP_STARTUP_ID");
  out << "startup " << (startup == nullptr ? "none" : startup) << "\n";
  out.close();
  std::filesystem::rename(path + ".new", path);
}

class Windows {
 public:
  Windows(std::string instance, std::string name, Options options)
      : classNames_(std::move(instance) + '\0' + std::move(name) + '\0'),
        options_(std::move(options)),
        connection_(xcb_connect(nullptr, nullptr)) {}
  ~Windows() { xcb_disconnect(connection_); }
  Windows(const Windows&) = delete;
  Windows& operator=(const Windows&) = delete;

  bool open() {
    if (xcb_connection_has_error(connection_) != 0) return false;
    const int count = options_.contains("windows") ? std::stoi(options_["windows"]) : 1;
    for (int i = 0; i < count; ++i) openWindow();
    xcb_flush(connection_);
    return true;
  }

  /// Until the last one is closed.
  void serve() {
    while (xcb_generic_event_t* event = xcb_wait_for_event(connection_)) {
      const bool isRequest = (event->response_type & 0x7f) == XCB_CLIENT_MESSAGE;
      const auto window = reinterpret_cast<xcb_client_message_event_t*>(event)->window;
      std::free(event);
      if (!isRequest || options_.contains("refuse")) continue;
      xcb_destroy_window(connection_, window);
      xcb_flush(connection_);
      if (--open_ == 0) return;
    }
  }

 private:
  xcb_atom_t atom(const std::string& name) {
    auto* reply = xcb_intern_atom_reply(
        connection_, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr);
    const xcb_atom_t result = reply == nullptr ? xcb_atom_t{0} : reply->atom;
    std::free(reply);
    return result;
  }

  void setText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::string_view text) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
  }

  void setNumber(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::uint32_t number) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, type, 32, 1, &number);
  }

  void openWindow() {
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    const xcb_window_t window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, screen->root, 10, 10, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &screen->white_pixel);
    setText(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, classNames_);
    const bool canBeAsked = !options_.contains("unasked");
    setNumber(window, atom("WM_PROTOCOLS"), XCB_ATOM_ATOM, atom(canBeAsked ? "WM_DELETE_WINDOW" : "_NET_WM_PING"));
    if (options_.contains("gtk")) setText(window, atom("_GTK_APPLICATION_ID"), atom("UTF8_STRING"), options_["gtk"]);
    if (options_.contains("type")) {
      setNumber(window, atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, atom("_NET_WM_WINDOW_TYPE_" + options_["type"]));
    }
    if (options_.contains("skip")) {
      setNumber(window, atom("_NET_WM_STATE"), XCB_ATOM_ATOM, atom("_NET_WM_STATE_SKIP_TASKBAR"));
    }
    if (options_.contains("dialog") && first_ != 0) {
      setNumber(window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, first_);
    }
    if (first_ == 0) first_ = window;
    if (!options_.contains("hidden")) xcb_map_window(connection_, window);
    ++open_;
  }

  const std::string classNames_;
  Options options_;
  xcb_connection_t* const connection_;
  xcb_window_t first_ = 0;
  int open_ = 0;
};

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) return 2;
  auto options = optionsOf({arguments + 3, arguments + count});
  if (options.contains("report")) report(options["report"]);
  Windows windows(arguments[1], arguments[2], options);
  if (!windows.open()) return 1;
  windows.serve();
  return 0;
}
