#include "bench/HostProcess.hpp"

#include "bench/RawPhone.hpp"

#include <signal.h>

#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

namespace orvel::bench {
namespace {

constexpr std::chrono::microseconds betweenAttempts{200};

}  // namespace

ChildProcess::Program hostProgram(ChildProcess::Environment environment, const std::string& option) {
  environment["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=/no-system-bus";
  return {.command = {ORVEL_PROGRAM, option}, .environment = std::move(environment)};
}

HostProcess::HostProcess(const ChildProcess::Environment& environment)
    : program_(hostProgram(environment, "--background")) {
  const Deadline deadline(timeout);
  while (!RawPhone::isAnswered(hostPort)) {
    if (program_.waitForExit(Milliseconds(0)) || deadline.left() == Milliseconds(0)) {
      throw std::runtime_error("the host does not start: " + program_.output());
    }
    std::this_thread::sleep_for(betweenAttempts);
  }
  startTime_ = std::chrono::steady_clock::now() - begun_;
  // Whoever holds the port on a shared network would have answered, too.
  if (program_.waitForExit(lull) || program_.output().find("Listening") == std::string::npos) {
    throw std::runtime_error("the host has no port: " + program_.output());
  }
}

void HostProcess::stop() {
  program_.signal(SIGTERM);
  if (program_.waitForExit() != 0) throw std::runtime_error("the host does not end well: " + program_.output());
}

std::string runHost(const VirtualDesktop& desktop, const std::string& option) {
  ChildProcess program(hostProgram(desktop.environment(), option));
  if (program.waitForExit() != 0) throw std::runtime_error("the host does not know " + option);
  return program.output();
}

std::string hostToken(const VirtualDesktop& desktop) {
  constexpr std::string_view label = "Code:";
  const std::string said = runHost(desktop, "--pair");
  const std::size_t start = said.find(label);
  if (start == std::string::npos) throw std::runtime_error("the host prints no code");
  // A QR code may follow on the lines below.
  const std::size_t begin = start + label.size();
  std::string token = said.substr(begin, said.find('\n', begin) - begin);
  std::erase_if(token, [](char sign) { return sign == '-' || sign == ' '; });
  return token;
}

}  // namespace orvel::bench
