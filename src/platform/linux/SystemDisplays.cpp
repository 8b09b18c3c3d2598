#include "platform/linux/SystemDisplays.hpp"

#include <utility>

namespace orvel {

SystemDisplays::SystemDisplays(const X11Connection& connection)
    : monitors_(connection), state_(State{std::make_shared<const DisplayLayout>(), {}}) {
  refresh();
}

std::shared_ptr<const DisplayLayout> SystemDisplays::layout() const {
  return state_.withLock([](const State& state) { return state.layout; });
}

Size SystemDisplays::screenSize() const {
  return state_.withLock([](const State& state) { return state.screenSize; });
}

void SystemDisplays::handle(const xcb_generic_event_t& event) {
  if (monitors_.tellsOfChange(event)) refresh();
}

void SystemDisplays::refresh() {
  auto found = monitors_.ask();
  if (!found) return;
  DisplayLayout layout{.main = {}, .screens = std::move(found->monitors)};
  if (layout.screens.empty()) layout.screens.push_back({{0, 0}, found->screen});
  layout.main = layout.screens.front();
  const State now{std::make_shared<const DisplayLayout>(std::move(layout)), found->screen};
  state_.withLock([&](State& state) { state = now; });
}

}  // namespace orvel
