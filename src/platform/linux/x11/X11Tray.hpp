#pragma once

#include "platform/linux/tray/EmbeddingTray.hpp"

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QtGlobal>
#include <cstdint>
#include <functional>

struct xcb_connection_t;

namespace orvel {

/// Follows whether the X server has a tray into which windows can be embedded, the older of the trays' protocols.
///
/// Threads: the main thread, which waits for the server while this is made, and where that is said.
class X11Tray final : public EmbeddingTray, private QAbstractNativeEventFilter {
 public:
  /// `changed` is called when such a tray comes, and when it goes. It must not do more than to take note.
  explicit X11Tray(std::function<void()> changed);

  bool isOwned() const override { return owner_ != 0; }

  /// The tray's window does not say so: the server may name the window of a new tray as it named the old one's.
  std::uint32_t ownership() const override { return ownership_; }

  bool isTranslucent() const override;
  void requestDock(std::uint32_t window) const override;

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void follow(std::uint32_t owner);

  const std::function<void()> changed_;
  xcb_connection_t* connection_ = nullptr;  // the toolkit's, or null where it speaks to no X server
  std::uint32_t selection_ = 0;
  std::uint32_t manager_ = 0;
  std::uint32_t owner_ = 0;
  std::uint32_t ownership_ = 0;
};

}  // namespace orvel
