// Starts the program of a desktop entry as Orvel does, with signals ignored and blocked as Orvel has them, and ends:
// LaunchAndLeave ENTRY.

#include "catalog/Workspace.hpp"
#include "platform/Platform.hpp"

#include <csignal>
#include <memory>
#include <variant>

int main(int count, char** arguments) {
  if (count != 2) return 2;
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, number);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  signal(SIGUSR1, SIG_IGN);
  const auto opened = orvel::openPlatform();
  const auto* platform = std::get_if<std::unique_ptr<orvel::Platform>>(&opened);
  if (platform == nullptr) return 1;
  (*platform)->workspace().open(arguments[1]);
  return 0;
}
