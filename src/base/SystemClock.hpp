#pragma once

#include "base/Clock.hpp"

namespace orvel {

/// The computer's own steady clock. Threads: any.
class SystemClock final : public Clock {
 public:
  Seconds now() const override;
  void sleep(Seconds duration) override;
};

}  // namespace orvel
