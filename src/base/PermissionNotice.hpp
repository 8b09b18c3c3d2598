#pragma once

#include <string>

namespace orvel {

/// Why this program may not do something, in words for whoever sits at the computer, as the system would put them.
struct PermissionNotice {
  std::string heading;
  std::string explanation;  ///< Why not and what to do, in one sentence.
  std::string action{};     ///< What a button says that asks for the permission; empty where asking does nothing.

  friend bool operator==(const PermissionNotice&, const PermissionNotice&) = default;
};

}  // namespace orvel
