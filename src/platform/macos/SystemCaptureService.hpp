#pragma once

#include "mirror/CaptureService.hpp"

#include <memory>
#include <variant>

namespace orvel {

class Patience;

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

  /// Parts from a system that does not answer: whatever waits for it fails, now and from now on.
  void giveUp();

 private:
  const std::shared_ptr<Patience> patience_;
};

}  // namespace orvel
