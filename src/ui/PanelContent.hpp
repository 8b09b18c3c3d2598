#pragma once

#include "ui/QRMaker.hpp"
#include "ui/Symbol.hpp"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvel {

/// What the panel shows, top to bottom, in values that know nothing of a toolkit.

enum class PanelColor { primary, secondary, red, orange, green };

enum class PanelFont {
  title,       ///< 13 points, semibold
  heading,     ///< 12 points, semibold
  body,        ///< 12 points
  small,       ///< 11 points
  label,       ///< 11 points, medium
  monospaced,  ///< 12 points, all characters equally wide
};

enum class PanelAction { openAccessibilitySettings, toggleCode, restart, newCode, quit };

struct PanelButton {
  std::string text;
  PanelAction action;

  friend bool operator==(const PanelButton&, const PanelButton&) = default;
};

/// A filled circle, and the title above the status.
struct PanelStatus {
  PanelColor circle;
  std::string title;
  std::string text;

  friend bool operator==(const PanelStatus&, const PanelStatus&) = default;
};

struct PanelSymbol {
  Symbol symbol;
  PanelColor color;

  friend bool operator==(const PanelSymbol&, const PanelSymbol&) = default;
};

struct PanelText {
  std::string text;
  PanelFont font = PanelFont::body;
  PanelColor color = PanelColor::primary;
  std::optional<PanelSymbol> symbol{};  ///< Before the text.
  bool isName = false;                  ///< Cut off to one line where there is no room for it.

  friend bool operator==(const PanelText&, const PanelText&) = default;
};

/// On a white rounded ground, shown without smoothing.
struct PanelQR {
  QRImage image;
  double shownSide = 0;  ///< Points.

  friend bool operator==(const PanelQR&, const PanelQR&) = default;
};

/// A text that can be selected and copied, in equally wide characters.
struct PanelField {
  std::string name;  ///< What screen readers call it.
  std::string text;

  friend bool operator==(const PanelField&, const PanelField&) = default;
};

/// Texts that belong together, in a box.
struct PanelFields {
  std::vector<PanelField> fields;

  friend bool operator==(const PanelFields&, const PanelFields&) = default;
};

/// A label, and at the end of its row a button that looks like a link and shows or hides something.
struct PanelLabel {
  std::string text;
  PanelButton link;
  bool isExpanded = false;

  friend bool operator==(const PanelLabel&, const PanelLabel&) = default;
};

/// The switch for starting at login.
struct PanelToggle {
  std::string text;
  bool isOn = false;

  friend bool operator==(const PanelToggle&, const PanelToggle&) = default;
};

struct PanelButtons {
  std::vector<PanelButton> buttons;
  bool areSmall = false;

  friend bool operator==(const PanelButtons&, const PanelButtons&) = default;
};

using PanelRow = std::variant<PanelStatus, PanelText, PanelQR, PanelFields, PanelLabel, PanelToggle, PanelButtons>;

struct PanelBlock {
  enum class Kind { header, permission, pairing, connections, options, footer };

  Kind kind;
  std::vector<PanelRow> rows{};

  friend bool operator==(const PanelBlock&, const PanelBlock&) = default;
};

/// A divider separates each block from the next.
using PanelContent = std::vector<PanelBlock>;

}  // namespace orvel
