#include "app/CommandLine.hpp"
#include "app/OrvelApp.hpp"
#include "app/PairCommand.hpp"
#include "app/Termination.hpp"
#include "base/Guarded.hpp"
#include "platform/Instance.hpp"
#include "platform/Platform.hpp"
#include "ui/MainLoop.hpp"

#include <cstddef>
#include <functional>
#include <iostream>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace {

using orvel::CommandLine::Command;

constexpr int usageError = 2;
constexpr int noDesktop = 1;
constexpr int noneRuns = 1;
constexpr int notPrinted = 1;

int fail(int exitCode, const std::string& reason) {
  std::cerr << "orvel: " << reason << '\n';
  return exitCode;
}

std::vector<std::string> toolkitArguments() {
  std::vector<std::string> arguments = orvel::prepareToolkit();
  arguments.insert(arguments.begin(), "orvel");
  return arguments;
}

int runApplication(orvel::MainLoop& mainLoop, orvel::Instance& instance, bool inBackground,
                   std::function<void(const std::string&)>& showPanel) {
  // Outlives the platform, whose threads may report the desktop's end until they have ended. Its lock is held
  // meanwhile, so that the application stays until they have.
  orvel::Guarded<orvel::OrvelApp*> running;
  auto opened = orvel::openPlatform();
  if (const auto* reason = std::get_if<std::string>(&opened)) return fail(noDesktop, *reason);
  auto& platform = *std::get<std::unique_ptr<orvel::Platform>>(opened);
  orvel::OrvelApp app(mainLoop, platform);
  const orvel::TerminationSignals signals([&app] { app.quit(0); });
  running.withLock([&app](orvel::OrvelApp*& current) { current = &app; });
  platform.observeEnd([&running] {
    std::cerr << "The desktop has gone.\n";
    running.withLock([](orvel::OrvelApp* current) {
      if (current != nullptr) current->quit(noDesktop);
    });
  });
  showPanel = [&app](const std::string& token) { app.showPanel(token); };
  const int exitCode = app.run({.inBackground = inBackground, .token = instance.token()});
  running.withLock([](orvel::OrvelApp*& current) { current = nullptr; });
  return exitCode;
}

int run(bool inBackground) {
  if (const auto reason = orvel::missingDesktop()) return fail(noDesktop, *reason);
  const auto instance = orvel::openInstance();
  // Made before the platform, so that it outlives the platform's threads, which post to it.
  orvel::MainLoop mainLoop(toolkitArguments());
  std::function<void(const std::string&)> showPanel;
  const auto claim = [&] { return instance->claim([&showPanel](const std::string& token) { showPanel(token); }); };
  if (!claim()) {
    if (inBackground || instance->showOther()) return 0;
    // The other one may just have ended.
    if (!claim()) return fail(noneRuns, "the Orvel that runs does not answer. End it, then start Orvel again.");
  }
  return runApplication(mainLoop, *instance, inBackground, showPanel);
}

int showPanel() {
  if (orvel::openInstance()->showOther()) return 0;
  return fail(noneRuns, "no Orvel runs here that could show its panel. Start it with: orvel");
}

int perform(Command command) {
  switch (command) {
    case Command::run:
      return run(false);
    case Command::runInBackground:
      return run(true);
    case Command::showPanel:
      return showPanel();
    case Command::pair:
      return orvel::printPairing();
    case Command::printVersion:
      std::cout << "orvel " ORVEL_VERSION "\n";
      return 0;
    case Command::printHelp:
      std::cout << orvel::CommandLine::usage;
      return 0;
  }
  return usageError;
}

}  // namespace

int main(int argc, char** argv) {
  const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
  const auto parsed = orvel::CommandLine::parse(arguments.empty() ? arguments : arguments.subspan(1));
  if (const auto* error = std::get_if<std::string>(&parsed)) {
    std::cerr << "orvel: " << *error << "\n\n" << orvel::CommandLine::usage;
    return usageError;
  }
  const int exitCode = perform(std::get<Command>(parsed));
  return std::cout.flush() ? exitCode : notPrinted;
}
