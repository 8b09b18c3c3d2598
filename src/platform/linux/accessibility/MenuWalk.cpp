#include "platform/linux/accessibility/MenuWalk.hpp"

#include <utility>

namespace orvel {
namespace {

constexpr std::size_t mostSteps = 400;

}  // namespace

MenuWalk::MenuWalk(const AccessibleObject& start, bool tellsShowing) : tellsShowing_(tellsShowing), last_(start) {}

std::optional<MenuWalk::Step> MenuWalk::next() {
  if (const auto last = std::exchange(last_, std::nullopt)) enqueueChildrenOf(*last);
  if (waiting_.empty()) return std::nullopt;
  Step step = std::move(waiting_.front());
  waiting_.pop_front();
  last_ = step.object;
  return step;
}

void MenuWalk::narrow(const Step& step) {
  waiting_.clear();
  last_ = step.object;
}

void MenuWalk::enqueueChildrenOf(const AccessibleObject& object) {
  for (const AccessibleObject& child : object.children()) {
    if (++steps_ > mostSteps) return;
    const auto role = child.role();
    if (!role || isCollection(*role)) continue;
    if (tellsShowing_ && !child.isShowing()) continue;
    waiting_.insert(isOfMenu(*role) ? waiting_.begin() : waiting_.end(), Step{child, *role});
  }
}

}  // namespace orvel
