#include "platform/linux/accessibility/AccessibleRole.hpp"

namespace orvel {
namespace {

/// An entry of a menu bar or of a menu. Some toolkits call the menu that opens like those that open it.
std::optional<std::string> axRoleOfMenu(AccessibleRole role, std::optional<AccessibleRole> parent) {
  if (parent == AccessibleRole::menuBar) return "AXMenuBarItem";
  const bool isInMenu = parent == AccessibleRole::menu || parent == AccessibleRole::popupMenu;
  if (role == AccessibleRole::menu && !isInMenu) return std::nullopt;
  return "AXMenuItem";
}

}  // namespace

std::optional<std::string> axRole(AccessibleRole role, std::optional<AccessibleRole> parent) {
  switch (role) {
    case AccessibleRole::pushButton:
      return "AXButton";
    case AccessibleRole::checkBox:
    case AccessibleRole::toggleButton:
    case AccessibleRole::switchButton:
      return "AXCheckBox";
    case AccessibleRole::radioButton:
      return "AXRadioButton";
    case AccessibleRole::comboBox:
    case AccessibleRole::pushButtonMenu:
      return "AXPopUpButton";
    case AccessibleRole::menu:
    case AccessibleRole::menuItem:
    case AccessibleRole::checkMenuItem:
    case AccessibleRole::radioMenuItem:
    case AccessibleRole::tearOffMenuItem:
      return axRoleOfMenu(role, parent);
    case AccessibleRole::link:
      return "AXLink";
    case AccessibleRole::pageTab:
      return "AXTabButton";
    case AccessibleRole::spinButton:
      return "AXIncrementor";
    default:
      return std::nullopt;
  }
}

bool isActionable(AccessibleRole role) {
  switch (role) {
    case AccessibleRole::pushButton:
    case AccessibleRole::pushButtonMenu:
    case AccessibleRole::checkBox:
    case AccessibleRole::toggleButton:
    case AccessibleRole::switchButton:
    case AccessibleRole::radioButton:
    case AccessibleRole::comboBox:
    case AccessibleRole::menu:
    case AccessibleRole::menuItem:
    case AccessibleRole::checkMenuItem:
    case AccessibleRole::radioMenuItem:
    case AccessibleRole::tearOffMenuItem:
    case AccessibleRole::link:
    case AccessibleRole::pageTab:
    case AccessibleRole::spinButton:
      return true;
    default:
      return false;
  }
}

bool isDecoration(AccessibleRole role) {
  switch (role) {
    case AccessibleRole::none:
    case AccessibleRole::label:
    case AccessibleRole::staticText:
    case AccessibleRole::image:
    case AccessibleRole::icon:
    case AccessibleRole::filler:
    case AccessibleRole::panel:
      return true;
    default:
      return false;
  }
}

bool isOfMenu(AccessibleRole role) {
  switch (role) {
    case AccessibleRole::menuBar:
    case AccessibleRole::menu:
    case AccessibleRole::popupMenu:
    case AccessibleRole::menuItem:
    case AccessibleRole::checkMenuItem:
    case AccessibleRole::radioMenuItem:
    case AccessibleRole::tearOffMenuItem:
      return true;
    default:
      return false;
  }
}

bool isCollection(AccessibleRole role) {
  switch (role) {
    case AccessibleRole::list:
    case AccessibleRole::listBox:
    case AccessibleRole::table:
    case AccessibleRole::tree:
    case AccessibleRole::treeTable:
    case AccessibleRole::terminal:
    case AccessibleRole::text:
    case AccessibleRole::documentWeb:
      return true;
    default:
      return false;
  }
}

}  // namespace orvel
