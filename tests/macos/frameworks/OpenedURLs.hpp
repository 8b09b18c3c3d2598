#pragma once

#include <string>
#include <vector>

/// What the workspace was asked to open.
namespace fake {

struct OpenedURLs {
  std::vector<std::string> all;
};

/// Tests set it anew.
OpenedURLs& openedURLs();

}  // namespace fake
