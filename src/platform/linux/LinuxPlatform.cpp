#include "platform/linux/LinuxPlatform.hpp"

#include "platform/linux/SystemLoginItemService.hpp"
#include "platform/linux/tray/EmbeddingTray.hpp"

#include <utility>

namespace orvel {

LinuxPlatform::LinuxPlatform(std::unique_ptr<Backend> backend, const rlimit& openFiles)
    : backend_(std::move(backend)),
      accessibility_([this](Point position) { return backend_->windowAt(position); }),
      appearance_(backend_->theme()),
      bundles_(desktopEntries_),
      loginItem_(ConfigurationFolders::ofUser(), ownProgram()),
      statusItem_([this](std::function<void()> changed) { return backend_->makeEmbeddingTray(std::move(changed)); }),
      workspace_(backend_->windows(), backend_->activationTokens(), backend_->theme(), desktopEntries_, dataFolders_,
                 openFiles) {}

LinuxPlatform::~LinuxPlatform() {
  // Before the leaves go to which its thread dispatches.
  backend_->stopListening();
}

bool LinuxPlatform::listen() {
  return backend_->listen([this] { end(); });
}

void LinuxPlatform::observeEnd(std::function<void()> handler) {
  const bool late = end_.withLock([&](End& end) {
    if (!end.hasCome) end.handler = handler;
    return end.hasCome;
  });
  if (late) handler();
}

void LinuxPlatform::end() {
  const auto handler = end_.withLock([](End& end) {
    end.hasCome = true;
    return std::move(end.handler);
  });
  if (handler) handler();
}

std::unique_ptr<Preferences> openPreferences() {
  return std::make_unique<SystemPreferences>();
}

std::unique_ptr<Machine> openMachine() {
  return std::make_unique<SystemMachine>();
}

}  // namespace orvel
