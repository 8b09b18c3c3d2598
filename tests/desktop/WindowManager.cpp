#include "desktop/WindowManager.hpp"

#include "desktop/Timeout.hpp"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <thread>

namespace orvel {
namespace {

struct FreeMemory {
  void operator()(void* memory) const noexcept { std::free(memory); }
};
template <class Content>
using Answer = std::unique_ptr<Content, FreeMemory>;

constexpr std::uint32_t mostNumbers = 100'000;
constexpr std::uint32_t iconicState = 3;

Answer<xcb_get_property_reply_t> property(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t name) {
  const auto asked = xcb_get_property(connection, 0, window, name, XCB_ATOM_ANY, 0, mostNumbers);
  return Answer<xcb_get_property_reply_t>(xcb_get_property_reply(connection, asked, nullptr));
}

/// A file that is there once it manages windows; what it says of itself comes too early.
std::string readyMark(const VirtualDesktop& desktop) {
  return (desktop.home() / "window-manager-is-ready").string();
}

/// It does not start without its themes, whatever folders the programs of a test have.
ChildProcess::Environment environmentOn(const VirtualDesktop& desktop) {
  auto environment = desktop.environment();
  environment["XDG_DATA_DIRS"] = "/usr/share";
  return environment;
}

}  // namespace

WindowManager::WindowManager(const VirtualDesktop& desktop)
    : openbox_({.command = {"openbox", "--sm-disable", "--startup", "touch " + readyMark(desktop)},
                .environment = environmentOn(desktop)}),
      connection_(xcb_connect(desktop.display().c_str(), nullptr)),
      root_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root) {
  const Deadline deadline(timeout);
  while (!std::filesystem::exists(readyMark(desktop))) {
    if (deadline.left() == Milliseconds(0)) throw std::runtime_error("no window manager");
    std::this_thread::sleep_for(Milliseconds(5));
  }
}

WindowManager::~WindowManager() {
  xcb_disconnect(connection_);
}

std::vector<xcb_window_t> WindowManager::windowsOf(const std::string& className) const {
  auto windows = numbers(root_, "_NET_CLIENT_LIST");
  std::erase_if(windows, [&](xcb_window_t window) {
    return text(window, "WM_CLASS").find('\0' + className + '\0') == std::string::npos;
  });
  return windows;
}

std::vector<xcb_window_t> WindowManager::stacking() const {
  return numbers(root_, "_NET_CLIENT_LIST_STACKING");
}

xcb_window_t WindowManager::activeWindow() const {
  const auto active = numbers(root_, "_NET_ACTIVE_WINDOW");
  return active.empty() ? 0 : active.front();
}

std::uint32_t WindowManager::currentWorkspace() const {
  const auto current = numbers(root_, "_NET_CURRENT_DESKTOP");
  return current.empty() ? 0 : current.front();
}

bool WindowManager::isMinimised(xcb_window_t window) const {
  const auto states = numbers(window, "_NET_WM_STATE");
  return std::find(states.begin(), states.end(), atom("_NET_WM_STATE_HIDDEN")) != states.end();
}

bool WindowManager::isInTaskbar(xcb_window_t window) const {
  const auto states = numbers(window, "_NET_WM_STATE");
  return std::find(states.begin(), states.end(), atom("_NET_WM_STATE_SKIP_TASKBAR")) == states.end();
}

void WindowManager::minimise(xcb_window_t window) const {
  send(window, "WM_CHANGE_STATE", iconicState);
}

void WindowManager::close(xcb_window_t window) const {
  send(window, "_NET_CLOSE_WINDOW", 0);
}

void WindowManager::moveToWorkspace(xcb_window_t window, std::uint32_t workspace) const {
  send(window, "_NET_WM_DESKTOP", workspace);
}

void WindowManager::kill() {
  openbox_.signal(SIGKILL);
  openbox_.waitForExit();
}

xcb_atom_t WindowManager::atom(const std::string& name) const {
  const auto asked = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const Answer<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(connection_, asked, nullptr)};
  if (!reply) throw std::runtime_error("the server has gone");
  return reply->atom;
}

std::vector<std::uint32_t> WindowManager::numbers(xcb_window_t window, const std::string& name) const {
  const auto reply = property(connection_, window, atom(name));
  if (!reply || reply->format != 32) return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

std::string WindowManager::text(xcb_window_t window, const std::string& name) const {
  const auto reply = property(connection_, window, atom(name));
  if (!reply || reply->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

void WindowManager::send(xcb_window_t window, const std::string& message, std::uint32_t word) const {
  const xcb_client_message_event_t event{.response_type = XCB_CLIENT_MESSAGE,
                                         .format = 32,
                                         .sequence = 0,
                                         .window = window,
                                         .type = atom(message),
                                         .data = {.data32 = {word, 2, 0, 0, 0}}};
  xcb_send_event(connection_, 0, root_, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&event));
  xcb_flush(connection_);
}

}  // namespace orvel
