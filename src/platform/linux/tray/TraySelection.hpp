#pragma once

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QtGlobal>
#include <cstdint>
#include <functional>

struct xcb_connection_t;

namespace orvel {

/// Follows whether the X server has a tray into which windows can be embedded, the older of the trays' protocols.
///
/// Threads: the main thread, which waits for the server only while this is made.
class TraySelection final : public QAbstractNativeEventFilter {
 public:
  /// `came` is called when such a tray comes. It must not do more than to take note.
  explicit TraySelection(std::function<void()> came);

  /// Whether there is one now.
  bool isOwned() const { return owner_ != 0; }

  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

 private:
  void follow(std::uint32_t owner);

  const std::function<void()> came_;
  xcb_connection_t* connection_ = nullptr;  // the toolkit's, or null where it speaks to no X server
  std::uint32_t selection_ = 0;
  std::uint32_t manager_ = 0;
  std::uint32_t owner_ = 0;
};

}  // namespace orvel
