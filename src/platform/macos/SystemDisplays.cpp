#include "platform/macos/SystemDisplays.hpp"

#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace orvel {
namespace {

Rect boundsOf(CGDirectDisplayID display) {
  const CGRect bounds = CGDisplayBounds(display);
  return {{bounds.origin.x, bounds.origin.y}, {bounds.size.width, bounds.size.height}};
}

/// The first is `main`, the others are in the order of the system.
std::vector<CGDirectDisplayID> activeDisplays(CGDirectDisplayID main) {
  std::uint32_t count = 0;
  if (CGGetActiveDisplayList(0, nullptr, &count) != kCGErrorSuccess) return {};
  std::vector<CGDirectDisplayID> displays(count);
  if (CGGetActiveDisplayList(count, displays.data(), &count) != kCGErrorSuccess) return {};
  // One of them may have gone in between.
  displays.resize(count);
  std::stable_partition(displays.begin(), displays.end(), [main](CGDirectDisplayID each) { return each == main; });
  return displays;
}

void displayChanged(CGDirectDisplayID, CGDisplayChangeSummaryFlags flags, void* displays) {
  // Before a change there is nothing new to see.
  if ((flags & kCGDisplayBeginConfigurationFlag) != 0) return;
  static_cast<SystemDisplays*>(displays)->refresh();
}

}  // namespace

SystemDisplays::SystemDisplays() {
  // First, so that no change falls between the two.
  CGDisplayRegisterReconfigurationCallback(displayChanged, this);
  refresh();
}

SystemDisplays::~SystemDisplays() {
  CGDisplayRemoveReconfigurationCallback(displayChanged, this);
}

std::shared_ptr<const DisplayLayout> SystemDisplays::layout() const {
  return layout_.withLock([](const auto& layout) { return layout; });
}

void SystemDisplays::refresh() {
  const CGDirectDisplayID main = CGMainDisplayID();
  DisplayLayout layout{.main = boundsOf(main), .screens = {}};
  for (const CGDirectDisplayID display : activeDisplays(main)) layout.screens.push_back(boundsOf(display));
  auto now = std::make_shared<const DisplayLayout>(std::move(layout));
  layout_.withLock([&](auto& known) { known = std::move(now); });
}

}  // namespace orvel
