#include "platform/linux/x11/WindowList.hpp"

#include <xcb/res.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace orvel {
namespace {

// In units of four bytes. What is longer is cut off.
constexpr std::uint32_t mostWindows = 4096;
constexpr std::uint32_t mostAtoms = 64;
constexpr std::uint32_t longestText = 128;

constexpr std::uint32_t onAllDesktops = 0xffffffff;

/// Says that the user wants it, not a program of its own accord.
constexpr std::uint32_t fromUser = 2;

using Cookie = xcb_get_property_cookie_t;
Cookie ask(const X11Connection& connection, xcb_window_t window, xcb_atom_t name, std::uint32_t length) {
  return xcb_get_property(connection.get(), false, window, name, XCB_ATOM_ANY, 0, length);
}

PropertyReply await(const X11Connection& connection, Cookie asked) {
  return awaitReply(connection, xcb_get_property_reply, asked);
}

std::uint32_t firstNumberIn(const PropertyReply& property) {
  const auto numbers = numbersIn(property);
  return numbers.empty() ? 0 : numbers.front();
}

bool contains(const std::vector<xcb_atom_t>& atoms, xcb_atom_t atom) {
  return std::find(atoms.begin(), atoms.end(), atom) != atoms.end();
}

/// The text up to the first zero byte, which leaves `text` with what stands behind it.
std::string takeWord(std::string_view& text) {
  const auto end = std::min(text.find('\0'), text.size());
  std::string word(text.substr(0, end));
  text.remove_prefix(std::min(end + 1, text.size()));
  return word;
}

}  // namespace

struct WindowList::Asked {
  xcb_window_t window;
  Cookie types;
  Cookie states;
  Cookie owner;
  Cookie classNames;
  Cookie process;
  Cookie gtkApplicationID;
  xcb_res_query_client_ids_cookie_t client;
};

WindowList::WindowList(const X11Connection& connection, const X11Atoms& atoms)
    : connection_(connection), atoms_(atoms), canNameClients_(connection.extension(xcb_res_id) != nullptr) {}

std::vector<ManagedWindow> WindowList::read() const {
  const auto askedList = ask(connection_, connection_.root(), atoms_.clientList, mostWindows);
  const auto askedManager = ask(connection_, connection_.root(), atoms_.supportingWindowManager, 1);
  const auto ids = numbersIn(await(connection_, askedList));
  const auto manager = firstNumberIn(await(connection_, askedManager));

  // A window manager that has gone has left its list behind, but not the window that says it is there.
  const auto askedProof = ask(connection_, manager, atoms_.supportingWindowManager, 1);
  std::vector<Asked> asked;
  asked.reserve(ids.size());
  for (const xcb_window_t id : ids) asked.push_back(askAbout(id));
  const auto proof = firstNumberIn(await(connection_, askedProof));

  std::vector<ManagedWindow> windows;
  windows.reserve(asked.size());
  for (const Asked& question : asked) windows.push_back(collect(question));
  if (manager == XCB_WINDOW_NONE || proof != manager) return {};
  return windows;
}

WindowList::Asked WindowList::askAbout(xcb_window_t window) const {
  Asked asked{.window = window,
              .types = ask(connection_, window, atoms_.windowType, mostAtoms),
              .states = ask(connection_, window, atoms_.windowState, mostAtoms),
              .owner = ask(connection_, window, XCB_ATOM_WM_TRANSIENT_FOR, 1),
              .classNames = ask(connection_, window, XCB_ATOM_WM_CLASS, longestText),
              .process = ask(connection_, window, atoms_.windowProcess, 1),
              .gtkApplicationID = ask(connection_, window, atoms_.gtkApplicationID, longestText),
              .client = {}};
  const xcb_res_client_id_spec_t process{.client = window, .mask = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
  if (canNameClients_) asked.client = xcb_res_query_client_ids(connection_.get(), 1, &process);
  return asked;
}

ManagedWindow WindowList::collect(const Asked& asked) const {
  const auto types = numbersIn(await(connection_, asked.types));
  const auto states = numbersIn(await(connection_, asked.states));
  const auto owner = firstNumberIn(await(connection_, asked.owner));
  const std::string classNames = textIn(await(connection_, asked.classNames));
  std::string_view words = classNames;
  ManagedWindow window{.id = asked.window,
                       .owner = owner == connection_.root() ? xcb_window_t{XCB_WINDOW_NONE} : owner,
                       .process = processOf(asked),
                       .instanceName = takeWord(words),
                       .className = takeWord(words),
                       .gtkApplicationID = textIn(await(connection_, asked.gtkApplicationID))};
  window.isApplicationWindow = isApplicationWindow(types);
  window.isInTaskbar = !contains(states, atoms_.windowStateSkipTaskbar);
  return window;
}

bool WindowList::isApplicationWindow(const std::vector<xcb_atom_t>& types) const {
  if (types.empty()) return true;
  // A panel may name a normal window as what comes next to it, for window managers that know no panels.
  if (contains(types, atoms_.windowTypeDock) || contains(types, atoms_.windowTypeDesktop)) return false;
  return contains(types, atoms_.windowTypeNormal) || contains(types, atoms_.windowTypeDialog);
}

pid_t WindowList::processOf(const Asked& asked) const {
  const auto claimed = firstNumberIn(await(connection_, asked.process));
  if (!canNameClients_) return static_cast<pid_t>(claimed);
  const auto reply = awaitReply(connection_, xcb_res_query_client_ids_reply, asked.client);
  if (!reply) return static_cast<pid_t>(claimed);
  // What the server knows itself is better than what a program says, which may live in a namespace of its own, or on
  // another computer.
  const auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
  if (ids.rem == 0 || xcb_res_client_id_value_value_length(ids.data) == 0) return 0;
  return static_cast<pid_t>(*xcb_res_client_id_value_value(ids.data));
}

std::vector<xcb_window_t> WindowList::stacking() const {
  return numbersIn(readProperty(connection_.get(), connection_.root(), atoms_.clientListStacking, mostWindows));
}

bool WindowList::canBeAskedToClose(xcb_window_t window) const {
  const auto protocols = numbersIn(readProperty(connection_.get(), window, atoms_.protocols, mostAtoms));
  return contains(protocols, atoms_.deleteWindow);
}

std::optional<std::uint32_t> WindowList::desktopOf(xcb_window_t window) const {
  const auto desktop = number(window, atoms_.windowDesktop);
  return desktop == onAllDesktops ? std::nullopt : desktop;
}

std::optional<std::uint32_t> WindowList::currentDesktop() const {
  return number(connection_.root(), atoms_.currentDesktop);
}

std::optional<std::uint32_t> WindowList::number(xcb_window_t window, xcb_atom_t name) const {
  const auto numbers = numbersIn(readProperty(connection_.get(), window, name, 1));
  return numbers.empty() ? std::nullopt : std::optional(numbers.front());
}

void WindowCommands::activate(xcb_window_t window, xcb_timestamp_t time) const {
  send(window, atoms_.activeWindow, {fromUser, time});
}

void WindowCommands::raise(xcb_window_t window) const {
  send(window, atoms_.restackWindow, {fromUser, XCB_WINDOW_NONE, XCB_STACK_MODE_ABOVE});
}

void WindowCommands::close(xcb_window_t window, xcb_timestamp_t time) const {
  send(window, atoms_.closeWindow, {time, fromUser});
}

void WindowCommands::showDesktop(std::uint32_t desktop, xcb_timestamp_t time) const {
  send(connection_.root(), atoms_.currentDesktop, {desktop, time});
}

void WindowCommands::flush() const {
  xcb_flush(connection_.get());
}

void WindowCommands::send(xcb_window_t window, xcb_atom_t type, const Words& words) const {
  xcb_client_message_event_t message{
      .response_type = XCB_CLIENT_MESSAGE, .format = 32, .sequence = 0, .window = window, .type = type, .data = {}};
  std::copy(words.begin(), words.end(), message.data.data32);
  xcb_send_event(connection_.get(), false, connection_.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
}

}  // namespace orvel
