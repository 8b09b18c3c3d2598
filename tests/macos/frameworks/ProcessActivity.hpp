#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <vector>

/// The activities that this process has begun.
namespace fake {

struct BegunActivity {
  NSActivityOptions options;
  std::string reason;

  friend bool operator==(const BegunActivity&, const BegunActivity&) = default;
};

/// Those that have not ended. Tests clear it.
std::vector<BegunActivity>& activities();

}  // namespace fake
