#include "desktop/windows/WindowSpeech.hpp"
#include "platform/linux/SystemStatusItem.hpp"
#include "platform/linux/bus/MessageBus.hpp"
#include "platform/linux/x11/X11Tray.hpp"

#include <QApplication>
#include <QSocketNotifier>
#include <chrono>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

namespace {

std::string wordsOf(const orvel::Rect& place) {
  std::ostringstream words;
  words << place.origin.x << ' ' << place.origin.y << ' ' << place.size.width << ' ' << place.size.height;
  return words.str();
}

}  // namespace

// A program with nothing but the icon, which does what its input says and reports what happens.
int main(int argc, char** argv) {
  orvel::keepToolkitOffUnresponsiveBus(orvel::TimeLimit(std::chrono::seconds(1)));
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  orvel::SystemStatusItem item(
      [](std::function<void()> changed) { return std::make_unique<orvel::X11Tray>(std::move(changed)); });
  item.show(orvel::Symbol::cursorArrow, {.activated = [] { orvel::say("activated"); }, .decided = {}});

  orvel::WindowCommands commands;
  QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
  QObject::connect(&input, &QSocketNotifier::activated, &application, [&] {
    for (const auto& command : commands.take()) {
      if (command.front() == "arrow") item.setSymbol(orvel::Symbol::cursorArrow);
      if (command.front() == "rays") item.setSymbol(orvel::Symbol::cursorArrowRays);
      if (command.front() == "ask") {
        const auto place = item.place();
        orvel::say(std::string(item.isShown() ? "shown" : "hidden") + " at " + (place ? wordsOf(*place) : "nowhere"));
      }
    }
    if (commands.ended) QApplication::quit();
  });
  orvel::say("ready");
  return QApplication::exec();
}
