#pragma once

#include "session/Activity.hpp"

#include <string>
#include <vector>

namespace orvel {

/// Records what is worked for.
class RecordingActivity final : public Activity {
 public:
  bool begin(const std::string& reason) override {
    begun.push_back(reason);
    return true;
  }
  void end() override { ++ended; }

  std::vector<std::string> begun;
  int ended = 0;
};

}  // namespace orvel
