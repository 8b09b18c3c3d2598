#include "input/PermissionGate.hpp"

#include "input/TrustCheck.hpp"

#include <utility>

namespace orvel {

PermissionGate::PermissionGate(TrustCheck& trust) : trust_(trust) {}

void PermissionGate::publishTo(std::function<void(bool)> publish) {
  publish_ = std::move(publish);
}

bool PermissionGate::refresh() {
  const bool trusted = trust_.isTrusted();
  cachedTrust_.withLock([&](bool& cached) { cached = trusted; });
  if (publish_) publish_(trusted);
  return trusted;
}

void PermissionGate::request() {
  trust_.prompt();
  trust_.openSettings();
}

bool PermissionGate::cachedTrust() const {
  return cachedTrust_.withLock([](bool cached) { return cached; });
}

}  // namespace orvel
