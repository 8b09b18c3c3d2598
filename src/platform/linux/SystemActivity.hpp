#pragma once

#include "session/Activity.hpp"

namespace orvel {

/// Linux slows no program down for having no window. Threads: any.
class SystemActivity final : public Activity {
 public:
  bool begin(const std::string&) override { return false; }
  void end() override {}
};

}  // namespace orvel
