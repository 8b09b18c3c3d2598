#pragma once

#include "base/Geometry.hpp"
#include "platform/linux/accessibility/AccessibleRole.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvel {

/// What the coordinates that a program reports are relative to.
enum class CoordinateType : std::uint32_t { screen = 0, window = 1 };

/// A conversation with the programs of a desktop about their user interfaces, which ends at a moment.
struct AccessibleConversation {
  const MessageBus& bus;
  TimeLimit limit;
};

/// An element of a program's user interface. Every question goes to its program, which may be wrong, slow, or not
/// answer at all: then there is no answer here either.
///
/// Threads: one; the conversation must outlive it.
class AccessibleObject {
 public:
  AccessibleObject(const AccessibleConversation& conversation, std::string program, std::string path)
      : conversation_(&conversation), program_(std::move(program)), path_(std::move(path)) {}

  /// The one whose children are the programs.
  static AccessibleObject desktop(const AccessibleConversation& conversation);

  std::optional<AccessibleRole> role() const;
  std::optional<Rect> extents(CoordinateType type) const;
  bool isShowing() const;
  std::optional<std::string> name() const;
  std::optional<AccessibleObject> parent() const;
  std::vector<AccessibleObject> children() const;

  /// The child that it has at a place, or what lies deeper still.
  std::optional<AccessibleObject> objectAt(Point place, CoordinateType type) const;

  /// The name of the toolkit of its program. For programs.
  std::optional<std::string> toolkit() const;

  /// The number of the process that it belongs to.
  std::optional<std::uint32_t> process() const;

  friend bool operator==(const AccessibleObject& a, const AccessibleObject& b) {
    return a.program_ == b.program_ && a.path_ == b.path_;
  }

 private:
  GLibPointer<GVariant> ask(const char* interface, const char* method, const char* replyType,
                            GVariant* arguments = nullptr) const;
  GLibPointer<GVariant> property(const char* interface, const char* name, const char* type) const;
  std::optional<std::string> textProperty(const char* interface, const char* name) const;
  std::optional<AccessibleObject> reference(GVariant* value) const;

  const AccessibleConversation* conversation_;
  std::string program_;  // its name on the bus
  std::string path_;
};

}  // namespace orvel
