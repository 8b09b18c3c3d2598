#pragma once

#include <cstdint>

namespace orvel {

/// A tray that takes windows into its own, the older of the trays' protocols. Threads: the main thread.
class EmbeddingTray {
 public:
  virtual ~EmbeddingTray() = default;

  /// Whether there is one now.
  virtual bool isOwned() const = 0;

  /// Another number whenever the tray comes, goes or is replaced.
  virtual std::uint32_t ownership() const = 0;

  /// Whether windows within it can be translucent. Waits for the desktop.
  virtual bool isTranslucent() const = 0;

  /// Asks it to take a window of ours into its own.
  virtual void requestDock(std::uint32_t window) const = 0;
};

}  // namespace orvel
