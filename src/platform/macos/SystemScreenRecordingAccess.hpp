#pragma once

#include "mirror/ScreenRecordingAccess.hpp"

namespace orvel {

/// The Screen Recording permission. A grant takes effect when the program is started anew. Threads: any.
class SystemScreenRecordingAccess final : public ScreenRecordingAccess {
 public:
  bool isGranted() override;
  Denial denial() const override;
  void request() override;
};

}  // namespace orvel
