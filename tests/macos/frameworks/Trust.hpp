#pragma once

/// The system's answers about the Accessibility permission.
namespace fake {

struct Trust {
  bool isGranted = false;
  int prompts = 0;  ///< How often the user was asked.
};

/// Tests set it anew.
Trust& trust();

}  // namespace fake
