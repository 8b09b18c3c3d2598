#pragma once

#include "base/Geometry.hpp"
#include "base/Guarded.hpp"
#include "desktop/SessionBus.hpp"
#include "desktop/Timeout.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <sys/types.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// One element of a program's user interface, as it was when it was asked for.
struct AccessibleNode {
  std::string role;         ///< In the words of the toolkit, such as "push button", "check box" or "label".
  std::string name;         ///< What a screen reader says, as a label's text or a button's title.
  std::string description;  ///< What it says on top.
  std::string text;         ///< The content of what holds text, such as an entry.
  Rect place;               ///< On the screen.
  bool isShowing = false;
  bool isEnabled = false;
  bool isFocused = false;
  bool isChecked = false;
  bool isExpandable = false;
  bool isExpanded = false;
  std::string path;  ///< Its object on the bus of accessibility.
};

/// What a screen reader knows of a program, and can do with it. Every question is asked anew and has a time limit.
///
/// Threads: one at a time.
class AccessibleProgram {
 public:
  using Nodes = std::vector<AccessibleNode>;

  /// Waits until that process reports its user interface. It does so only if accessibility was on
  /// before its start. Throws when it does not.
  AccessibleProgram(const SessionBus& bus, pid_t process, Milliseconds timeLimit = timeout);

  /// All elements that are shown now, parents before their children, in the order of the program.
  Nodes showing() const;

  /// The names of those of a role that are shown now, in order; of all roles if it is empty. Without those that have
  /// no name.
  std::vector<std::string> names(const std::string& role = {}) const;

  /// The first that is shown now, of that role and name. Nothing without one.
  std::optional<AccessibleNode> find(const std::string& role, const std::string& name) const;

  /// The one that has the keyboard.
  std::optional<AccessibleNode> focused() const;

  /// Waits until what is shown pleases `isRight`. False when it does not in time.
  bool waitFor(const std::function<bool(const Nodes&)>& isRight, Milliseconds limit = timeout) const;

  /// Waits until that one is shown. Throws, with what is shown instead, when it is not in time.
  AccessibleNode waitFor(const std::string& role, const std::string& name) const;

  /// Waits until that one is shown, then does what a click on it does. False when it has no such action.
  bool press(const std::string& role, const std::string& name) const;

  /// Keeps from now on what the program has screen readers say though nobody asked. Called once.
  void listen();

  /// Waits until it has them say that. False when it does not in time.
  bool waitForAnnouncement(const std::string& text) const;

 private:
  /// An announcement has a text, a notification that came up has a path.
  struct Heard {
    std::string text;
    std::string path;
  };
  using Hearing = Guarded<std::vector<Heard>>;

  static void hear(Hearing& hearing, GDBusMessage* message);
  std::string spoken(const Heard& heard) const;
  bool findProgram(pid_t process, const TimeLimit& limit);
  AccessibleNode node(const std::string& path) const;
  std::vector<std::string> childrenOf(const std::string& path) const;
  void addShowing(Nodes& nodes, const std::string& path, int depth) const;
  int pressingAction(const std::string& path) const;
  std::string textProperty(const std::string& path, const char* interface, const char* property) const;
  std::string textAnswer(const std::string& path, const char* interface, const char* method,
                         GVariant* arguments = nullptr) const;
  GLibPointer<GVariant> ask(const std::string& path, const char* interface, const char* method, const char* replyType,
                            GVariant* arguments = nullptr) const;

  std::optional<MessageBus> bus_;  // that of accessibility
  std::string program_;            // its name there
  const std::shared_ptr<Hearing> hearing_ = std::make_shared<Hearing>();
};

}  // namespace orvel
