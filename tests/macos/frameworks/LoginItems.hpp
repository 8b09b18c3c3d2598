#pragma once

#include <string>
#include <vector>

/// The system's list of what starts at login, in place of ServiceManagement.
namespace fake {

struct LoginItems {
  int status = 0;      ///< Of this program: 0 not registered, 1 enabled, 2 requires approval, 3 not found.
  bool fails = false;  ///< Whatever is asked for.
  std::vector<std::string> calls;
};

/// Tests set it anew.
LoginItems& loginItems();

}  // namespace fake
