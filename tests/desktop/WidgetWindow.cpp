#include "desktop/WidgetWindow.hpp"

#include <sstream>
#include <stdexcept>
#include <thread>

namespace orvel {
namespace {

std::vector<std::string> commandFor(const std::string& toolkit, const std::vector<std::string>& arguments) {
  std::vector<std::string> command{std::string(ORVEL_TEST_WINDOWS) + "/orvel_" + toolkit + "_window"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

}  // namespace

WidgetWindow::WidgetWindow(const SessionBus& bus, const std::string& toolkit, const std::vector<std::string>& arguments)
    : process_({.command = commandFor(toolkit, arguments), .environment = bus.environment()}) {
  if (!process_.waitForOutput("ready\n")) throw std::runtime_error("no window: " + process_.output());
  heard_ = process_.output().size();
}

std::map<std::string, Rect> WidgetWindow::places() {
  send("places");
  const Deadline deadline(timeout);
  while (process_.output().find("places said\n", heard_) == std::string::npos) {
    if (deadline.left() == Milliseconds(0)) throw std::runtime_error("the window is silent: " + process_.output());
    std::this_thread::sleep_for(Milliseconds(2));
  }
  std::istringstream lines(process_.output().substr(heard_));
  heard_ = process_.output().size();
  std::map<std::string, Rect> places;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string kind;
    std::string name;
    Rect rect;
    if (words >> kind >> name >> rect.origin.x >> rect.origin.y >> rect.size.width >> rect.size.height) {
      places[name] = rect;
    }
  }
  return places;
}

Rect WidgetWindow::place(const std::string& widget) {
  const Deadline deadline(timeout);
  while (deadline.left() > Milliseconds(0)) {
    const auto all = places();
    if (const auto found = all.find(widget); found != all.end()) return found->second;
    std::this_thread::sleep_for(Milliseconds(10));
  }
  throw std::runtime_error("no widget " + widget);
}

}  // namespace orvel
