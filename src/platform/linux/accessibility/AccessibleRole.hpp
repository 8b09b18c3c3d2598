#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace orvel {

/// What an element of a user interface is, by the numbers of AT-SPI; those alone that matter here.
///
/// Its numbers rather than its words are used: the words differ from toolkit to toolkit.
enum class AccessibleRole : std::uint32_t {
  none = 0,
  checkBox = 7,
  checkMenuItem = 8,
  comboBox = 11,
  filler = 20,
  icon = 26,
  image = 27,
  label = 29,
  list = 31,
  menu = 33,
  menuBar = 34,
  menuItem = 35,
  pageTab = 37,
  panel = 39,
  popupMenu = 41,
  pushButton = 43,
  radioButton = 44,
  radioMenuItem = 45,
  spinButton = 52,
  table = 55,
  tearOffMenuItem = 59,
  terminal = 60,
  text = 61,
  toggleButton = 62,
  tree = 65,
  treeTable = 66,
  link = 88,
  documentWeb = 95,
  listBox = 98,
  staticText = 116,
  pushButtonMenu = 129,
  switchButton = 130,
};

/// What macOS calls an element whose parent has the role `parent`. Nothing for what a snap leaves alone.
///
/// Toggle buttons and switches are check boxes, as they are on macOS. Nothing becomes an AXDisclosureTriangle or an
/// AXColorWell: AT-SPI knows neither, and the toolkits give push or toggle buttons instead, which are just as good.
std::optional<std::string> axRole(AccessibleRole role, std::optional<AccessibleRole> parent);

/// Whether one can act on it by a click.
bool isActionable(AccessibleRole role);

/// Whether it is only the face or the filling of what it stands in, as the label of a button is. Newer releases of GTK
/// give the inner parts of their controls no role at all.
bool isDecoration(AccessibleRole role);

/// Whether it is a menu or a part of one, a menu bar included.
bool isOfMenu(AccessibleRole role);

/// Whether it may have children without number, and no menus.
bool isCollection(AccessibleRole role);

}  // namespace orvel
