#include "desktop/TypingProgram.hpp"

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace orvel {
namespace {

constexpr Milliseconds windowLookInterval{5};

ChildProcess::Environment environmentOf(const VirtualDesktop& desktop) {
  auto environment = desktop.environment();
  environment["LC_ALL"] = "C.UTF-8";
  // Nothing but the keyboard shall reach these programs, and nothing shall be started by them.
  environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (desktop.home() / "no-bus").string();
  environment["NO_AT_BRIDGE"] = "1";
  environment["GTK_A11Y"] = "none";
  environment["GSETTINGS_BACKEND"] = "memory";
  return environment;
}

/// A terminal whose program takes the bytes as they come.
class Terminal final : public TypingProgram {
 public:
  explicit Terminal(const VirtualDesktop& desktop)
      : file_(desktop.home() / "typed"), process_({.command = command(), .environment = environmentOf(desktop)}) {
    const Deadline deadline(timeout);
    while (!std::filesystem::exists(file_)) {
      if (deadline.left() == Milliseconds(0)) throw std::runtime_error("no terminal: " + process_.output());
      std::this_thread::sleep_for(windowLookInterval);
    }
  }

  std::string content() override {
    std::ifstream file(file_, std::ios::binary);
    return {std::istreambuf_iterator(file), {}};
  }
  void signal(int number) override { process_.signal(number); }

 private:
  std::vector<std::string> command() const {
    const std::string program = "stty raw -echo; exec cat > '" + file_.string() + "'";
    return {"xterm", "-u8", "-e", "sh", "-c", program};
  }

  const std::filesystem::path file_;
  ChildProcess process_;
};

class EntryWindow final : public TypingProgram {
 public:
  EntryWindow(const VirtualDesktop& desktop, const std::string& toolkit)
      : process_({.command = {std::string(ORVEL_TEST_WINDOWS) + "/orvel_" + toolkit + "_window", "--entry"},
                  .environment = environmentOf(desktop)}) {
    if (!process_.waitForOutput("ready\n")) throw std::runtime_error("no window: " + process_.output());
  }

  std::string content() override {
    constexpr std::string_view label = "\ntext ";
    const std::string& output = process_.output();
    const auto end = output.rfind('\n');
    const auto begin = end == std::string::npos || end == 0 ? end : output.rfind(label, end - 1);
    if (begin == std::string::npos) return {};
    return fromHex(std::string_view(output).substr(begin + label.size(), end - begin - label.size()));
  }
  void signal(int number) override { process_.signal(number); }

 private:
  static std::string fromHex(std::string_view digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
      bytes += static_cast<char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16));
    }
    return bytes;
  }

  ChildProcess process_;
};

}  // namespace

std::unique_ptr<TypingProgram> TypingProgram::start(const VirtualDesktop& desktop, const std::string& name) {
  if (name == "xterm") return std::make_unique<Terminal>(desktop);
  return std::make_unique<EntryWindow>(desktop, name);
}

std::string TypingProgram::contentExpecting(const std::string& expected) {
  const Deadline deadline(timeout);
  std::string typed = content();
  while (typed != expected && expected.starts_with(typed) && deadline.left() > Milliseconds(0)) {
    std::this_thread::sleep_for(windowLookInterval);
    typed = content();
  }
  return typed;
}

}  // namespace orvel
