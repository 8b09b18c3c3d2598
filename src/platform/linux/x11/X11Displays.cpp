#include "platform/linux/x11/X11Displays.hpp"

#include <utility>

namespace orvel {

X11Displays::X11Displays(const X11Connection& connection)
    : monitors_(connection), state_(State{std::make_shared<const DisplayLayout>(), {}}) {
  refresh();
}

std::shared_ptr<const DisplayLayout> X11Displays::layout() const {
  return state_.withLock([](const State& state) { return state.layout; });
}

Size X11Displays::screenSize() const {
  return state_.withLock([](const State& state) { return state.screenSize; });
}

void X11Displays::handle(const xcb_generic_event_t& event) {
  if (monitors_.isChange(event)) refresh();
}

void X11Displays::refresh() {
  auto found = monitors_.ask();
  if (!found) return;
  DisplayLayout layout{.main = {}, .screens = std::move(found->monitors)};
  if (layout.screens.empty()) layout.screens.push_back({{0, 0}, found->screen});
  layout.main = layout.screens.front();
  const State now{std::make_shared<const DisplayLayout>(std::move(layout)), found->screen};
  state_.withLock([&](State& state) { state = now; });
}

}  // namespace orvel
