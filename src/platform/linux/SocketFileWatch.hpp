#pragma once

#include "platform/linux/OwnedDescriptor.hpp"

#include <filesystem>
#include <string>
#include <utility>

struct inotify_event;

namespace orvel {

/// Notices by inotify when the socket of the system bus appears, also while its folders are missing, and without
/// polling. Threads: one.
class SocketFileWatch {
 public:
  explicit SocketFileWatch(std::filesystem::path path);

  /// Readable when there are events for `takeEvents`; negative where the system has none to give.
  int descriptor() const { return events_.number(); }

  /// Starts to watch, from where the path ends today.
  void start();
  void stop();

  /// Whether the socket is known not to be there.
  bool isMissing() const;

  /// Whether the socket or a folder on the way to it has appeared since the last call. Never blocks.
  bool takeEvents();

 private:
  /// The nearest folder that exists, and what has to appear in it.
  std::pair<std::filesystem::path, std::string> nearest() const;
  bool isRelevant(const inotify_event& event) const;

  const std::filesystem::path path_;
  const OwnedDescriptor events_;
  int watch_ = -1;
  std::string awaited_;
};

}  // namespace orvel
