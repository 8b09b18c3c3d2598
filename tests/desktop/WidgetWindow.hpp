#pragma once

#include "base/Geometry.hpp"
#include "desktop/ChildProcess.hpp"
#include "desktop/SessionBus.hpp"

#include <map>
#include <string>
#include <vector>

namespace orvel {

/// Another program's window with one widget of each kind, made with one of the toolkits.
///
/// Threads: one at a time; the thread that made it must live as long as the window.
class WidgetWindow {
 public:
  /// Starts the program, such as "gtk3", and waits until its window is shown. Throws when it is not.
  WidgetWindow(const SessionBus& bus, const std::string& toolkit, const std::vector<std::string>& arguments = {});

  /// Where its visible widgets are now, by their names, as its toolkit has it.
  std::map<std::string, Rect> places();

  /// Where one of them is, once it is visible. Throws when it does not become so in time.
  Rect place(const std::string& widget);

  /// Sends a command, such as "move 10 20" or "close".
  void send(const std::string& command) { process_.write(command + "\n"); }

  ChildProcess& process() { return process_; }

 private:
  ChildProcess process_;
  std::size_t heard_ = 0;  // how much of what it said is known
};

}  // namespace orvel
