#include "frameworks/DisplayList.hpp"

#include <algorithm>
#include <utility>

namespace fake {
namespace {

constexpr CGError failure = 1000;

void notify(const std::vector<Display>& displays, CGDisplayChangeSummaryFlags flags) {
  for (const Display& display : displays) {
    for (const auto& [callback, userInfo] : displayList().watchers) callback(display.id, flags, userInfo);
  }
}

}  // namespace

DisplayList& displayList() {
  static DisplayList list;
  return list;
}

void DisplayList::become(std::vector<Display> displays, std::optional<CGDirectDisplayID> newMain) {
  const auto before = active;
  notify(before, kCGDisplayBeginConfigurationFlag);
  active = std::move(displays);
  main = newMain;
  notify(before, kCGDisplayRemoveFlag);
  notify(active, kCGDisplayAddFlag | kCGDisplayMovedFlag);
}

}  // namespace fake

extern "C" {

CGDirectDisplayID CGMainDisplayID() {
  const auto& list = fake::displayList();
  if (list.main) return *list.main;
  return list.active.empty() ? 0 : list.active.front().id;
}

CGRect CGDisplayBounds(CGDirectDisplayID id) {
  ++fake::displayList().questions;
  for (const auto& display : fake::displayList().active) {
    if (display.id == id) return display.bounds;
  }
  return {};
}

CGError CGGetActiveDisplayList(uint32_t size, CGDirectDisplayID* displays, uint32_t* count) {
  auto& list = fake::displayList();
  ++list.questions;
  if (list.isUnreadable) return fake::failure;
  const auto found = static_cast<uint32_t>(list.active.size());
  if (displays == nullptr) {
    *count = found;
    if (list.whenCounted) std::exchange(list.whenCounted, {})();
    return kCGErrorSuccess;
  }
  *count = std::min(size, found);
  for (uint32_t at = 0; at < *count; ++at) displays[at] = list.active[at].id;
  return kCGErrorSuccess;
}

CGError CGDisplayRegisterReconfigurationCallback(CGDisplayReconfigurationCallBack callback, void* userInfo) {
  fake::displayList().watchers.emplace_back(callback, userInfo);
  return kCGErrorSuccess;
}

CGError CGDisplayRemoveReconfigurationCallback(CGDisplayReconfigurationCallBack callback, void* userInfo) {
  const bool found = std::erase(fake::displayList().watchers, fake::DisplayList::Watcher(callback, userInfo)) > 0;
  return found ? kCGErrorSuccess : fake::failure;
}

}  // extern "C"
