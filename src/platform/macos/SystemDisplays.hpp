#pragma once

#include "base/Guarded.hpp"
#include "input/Displays.hpp"

#include <memory>

namespace orvel {

/// The displays that are switched on, the main one first. What they are is asked when they change, not with each event.
///
/// Threads: any, but made and destroyed on the main thread, whose run loop reports changes.
class SystemDisplays final : public Displays {
 public:
  SystemDisplays();
  ~SystemDisplays() override;
  SystemDisplays(const SystemDisplays&) = delete;
  SystemDisplays& operator=(const SystemDisplays&) = delete;

  std::shared_ptr<const DisplayLayout> layout() const override;

  /// Asks the system anew.
  void refresh();

 private:
  Guarded<std::shared_ptr<const DisplayLayout>> layout_;
};

}  // namespace orvel
