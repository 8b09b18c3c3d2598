// One start of a program of which one runs at a time: InstanceProcess [show [at-once]]. It says what comes of it:
// "token TOKEN", then "first", and "shown TOKEN" each time that another start has it show itself; or "second" and, with
// "show", whether the other one was shown. With "at-once" it does not try to be the first. The first ends with its
// input; each letter before keeps its main thread "busy".

#include "platform/Instance.hpp"

#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string_view>
#include <thread>

namespace {

int beSecond(orvel::Instance& instance, bool show) {
  std::cout << "second" << std::endl;
  if (show) std::cout << (instance.showOther() ? "other shown" : "other silent") << std::endl;
  return 0;
}

bool isSet(const char* name) {
  return std::getenv(name) != nullptr;
}

/// Whether there is more to come.
bool readInput() {
  char letter = 0;
  if (read(STDIN_FILENO, &letter, 1) != 1) return false;
  std::cout << "busy" << std::endl;
  std::this_thread::sleep_for(std::chrono::seconds(3));
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  const auto instance = orvel::openInstance();
  std::cout << "token " << instance->token() << std::endl;
  if (isSet("XDG_ACTIVATION_TOKEN") || isSet("DESKTOP_STARTUP_ID")) std::cout << "token left" << std::endl;
  const bool show = count > 1 && std::string_view(arguments[1]) == "show";
  if (show && count > 2) {
    // As a command that needs no toolkit.
    std::cout << (instance->showOther() ? "other shown" : "other silent") << std::endl;
    return 0;
  }
  const QCoreApplication application(count, arguments);
  if (!instance->claim([](const std::string& token) { std::cout << "shown " << token << std::endl; })) {
    return beSecond(*instance, show);
  }
  std::cout << "first" << std::endl;
  QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
  QObject::connect(&input, &QSocketNotifier::activated, [&] {
    if (!readInput()) QCoreApplication::quit();
  });
  return QCoreApplication::exec();
}
