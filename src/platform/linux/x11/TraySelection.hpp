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
/// Threads: the main thread, which waits for the server while this is made, and where that is said.
class TraySelection final : public QAbstractNativeEventFilter {
 public:
  /// `changed` is called when such a tray comes, and when it goes. It must not do more than to take note.
  explicit TraySelection(std::function<void()> changed);

  /// Whether there is one now.
  bool isOwned() const { return owner_ != 0; }

  /// Another number whenever the tray comes, goes or is replaced. Its window does not say so: the server may name the
  /// window of a new tray as it named the old one's.
  std::uint32_t ownership() const { return ownership_; }

  /// Whether windows within it can be translucent. Waits for the server.
  bool isTranslucent() const;

  /// Asks it to take a window of ours into its own.
  void requestDock(std::uint32_t window) const;

  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

 private:
  void follow(std::uint32_t owner);

  const std::function<void()> changed_;
  xcb_connection_t* connection_ = nullptr;  // the toolkit's, or null where it speaks to no X server
  std::uint32_t selection_ = 0;
  std::uint32_t manager_ = 0;
  std::uint32_t owner_ = 0;
  std::uint32_t ownership_ = 0;
};

}  // namespace orvel
