#pragma once

#include "ui/PanelHost.hpp"

#include <string>
#include <vector>

namespace orvel {

/// A host whose state a test sets, and that records what the panel asks of it.
class FakePanelHost final : public PanelHost {
 public:
  PanelState state() const override { return now; }
  PairingInvitation invitation() override { return offered; }
  void refreshPermission() override { asked.emplace_back("refreshPermission"); }
  void requestPermission() override { asked.emplace_back("requestPermission"); }
  void restart() override { asked.emplace_back("restart"); }
  void renewCode() override {
    asked.emplace_back("renewCode");
    if (renewsAtOnce) finishRenewal();
  }
  void finishRenewal() { offered = {"payload of the new code", "NEWC-ODEN-EWCO-DENE"}; }
  void quit() override { asked.emplace_back("quit"); }

  /// A host that listens, with the permission and without phones. The words for a missing permission are those of
  /// macOS.
  PanelState now{
      .isRunning = true,
      .accessibilityGranted = true,
      .port = 8787,
      .address = "192.168.1.23",
      .permission = {.heading = "Accessibility is off",
                     .explanation = "macOS will not let Orvel move the cursor until you tick it under Privacy & "
                                    "Security → Accessibility.",
                     .action = "Open Accessibility settings"}};
  PairingInvitation offered{R"({"v":1,"host":"192.168.1.23","port":8787,"token":"ABCDEFGHJKLMNPQR","name":"desk"})",
                            "ABCD-EFGH-JKLM-NPQR"};
  bool renewsAtOnce = true;
  std::vector<std::string> asked;
};

}  // namespace orvel
