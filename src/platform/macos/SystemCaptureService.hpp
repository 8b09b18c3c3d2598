#pragma once

#include "mirror/CaptureService.hpp"

#include <memory>
#include <variant>

namespace orvel {

class Cancellation;

/// Captures the screen by ScreenCaptureKit.
///
/// Threads: any; `shareableContent`, and what starts a capture of it, wait for the system.
class SystemCaptureService final : public CaptureService {
 public:
  SystemCaptureService();
  ~SystemCaptureService() override;
  SystemCaptureService(const SystemCaptureService&) = delete;
  SystemCaptureService& operator=(const SystemCaptureService&) = delete;

  std::variant<std::unique_ptr<ShareableContent>, CaptureFailure> shareableContent() override;

  /// Cancels every wait for the system: what waits fails, now and from now on.
  void giveUp();

 private:
  const std::shared_ptr<Cancellation> cancellation_;
};

}  // namespace orvel
