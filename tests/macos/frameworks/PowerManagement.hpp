#pragma once

#include <IOKit/pwr_mgt/IOPMLib.h>

#include <string>
#include <vector>

/// What programs declare of the user's activity, in place of IOKit.
namespace fake {

struct UserActivity {
  std::string name;
  IOPMUserActiveType type;
  IOPMAssertionID renewed;  ///< What the caller says that it had before.

  friend bool operator==(const UserActivity&, const UserActivity&) = default;
};

struct PowerManagement {
  std::vector<UserActivity> activities;  ///< In order.
  bool fails = false;
  bool displaySleeps = false;
};

/// Tests set it anew.
PowerManagement& powerManagement();

}  // namespace fake
