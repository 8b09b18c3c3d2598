#include "platform/linux/x11/keyboard/FocusedProgram.hpp"

#include "platform/linux/x11/X11Properties.hpp"

#include <algorithm>
#include <thread>

namespace orvel {
namespace {

using namespace std::chrono_literals;

constexpr auto pingTimeout = 4s;     // a program that redraws a long text is slow, and not lost
constexpr auto pollInterval = 50ms;  // of whether the server is still there
constexpr int deepestWindow = 16;
constexpr std::uint32_t mostProtocols = 64;
constexpr std::uint8_t wideFormat = 32;

}  // namespace

FocusedProgram::FocusedProgram(const X11Connection& connection)
    : connection_(connection),
      protocols_(namedAtom(connection.get(), "WM_PROTOCOLS")),
      ping_(namedAtom(connection.get(), "_NET_WM_PING")) {}

bool FocusedProgram::answers(xcb_window_t window) {
  return answeringWindow(window).has_value();
}

bool FocusedProgram::waitUntilReady(xcb_window_t window, Time otherwise) {
  const auto answering = answeringWindow(window);
  if (answering && canAsk(*answering)) {
    selectAnswers(true);
    ask(*answering);
    if (waitForAnswer()) return true;
  }
  std::this_thread::sleep_until(otherwise);
  return !answering;
}

void FocusedProgram::rest() {
  selectAnswers(false);
}

void FocusedProgram::stop() {
  const std::lock_guard lock(mutex_);
  isStopped_ = true;
  answered_.notify_all();
}

void FocusedProgram::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & x11EventTypeMask) != XCB_CLIENT_MESSAGE) return;
  const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
  if (message.type != protocols_ || message.format != wideFormat || message.data.data32[0] != ping_) return;
  const std::lock_guard lock(mutex_);
  if (message.data.data32[1] != question_.number || message.data.data32[2] != question_.window) return;
  question_.isAnswered = true;
  answered_.notify_all();
}

std::optional<xcb_window_t> FocusedProgram::answeringWindow(xcb_window_t window) {
  if (answering_.window != window) answering_ = {.window = window, .by = findAnsweringWindow(window)};
  return answering_.by;
}

std::optional<xcb_window_t> FocusedProgram::findAnsweringWindow(xcb_window_t window) const {
  for (int depth = 0; depth < deepestWindow && window > XCB_INPUT_FOCUS_POINTER_ROOT; ++depth) {
    const auto asked = xcb_query_tree(connection_.get(), window);
    if (answersPing(window)) return window;
    const auto family = awaitReply(connection_, xcb_query_tree_reply, asked);
    window = family ? family->parent : xcb_window_t{XCB_NONE};
  }
  return std::nullopt;
}

bool FocusedProgram::answersPing(xcb_window_t window) const {
  const auto protocols = numbersIn(readProperty(connection_.get(), window, protocols_, mostProtocols, XCB_ATOM_ATOM));
  return std::ranges::find(protocols, ping_) != protocols.end();
}

bool FocusedProgram::canAsk(xcb_window_t window) {
  const std::lock_guard lock(mutex_);
  const bool hangs = question_.window == window && !question_.isAnswered;
  return !hangs && !isStopped_;
}

void FocusedProgram::ask(xcb_window_t window) {
  xcb_client_message_event_t message = {};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = wideFormat;
  message.window = window;
  message.type = protocols_;
  {
    const std::lock_guard lock(mutex_);
    question_ = {.window = window, .number = question_.number + 1, .isAnswered = false};
    message.data.data32[1] = question_.number;
  }
  message.data.data32[0] = ping_;
  message.data.data32[2] = window;
  xcb_send_event(connection_.get(), false, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
  xcb_flush(connection_.get());
}

bool FocusedProgram::waitForAnswer() {
  const Time end = std::chrono::steady_clock::now() + pingTimeout;
  std::unique_lock lock(mutex_);
  while (!question_.isAnswered && !isStopped_ && connection_.isAlive() && std::chrono::steady_clock::now() < end) {
    answered_.wait_for(lock, pollInterval);
  }
  return question_.isAnswered;
}

/// Answers go to the root window. Selected only while they matter, for all changes of windows are reported with them.
void FocusedProgram::selectAnswers(bool wanted) {
  if (isSelected_ == wanted) return;
  const auto asked = xcb_get_window_attributes(connection_.get(), connection_.root());
  const auto reply = awaitReply(connection_, xcb_get_window_attributes_reply, asked);
  if (!reply) return;
  // A program has one selection per window: what the others of us listen to must stay in it.
  const std::uint32_t others = reply->your_event_mask & ~std::uint32_t{XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
  const std::uint32_t events = wanted ? others | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY : others;
  xcb_change_window_attributes(connection_.get(), connection_.root(), XCB_CW_EVENT_MASK, &events);
  xcb_flush(connection_.get());
  isSelected_ = wanted;
}

}  // namespace orvel
