#include "platform/linux/SocketFileWatch.hpp"

#include <sys/inotify.h>

#include <array>
#include <climits>
#include <system_error>

namespace orvel {

SocketFileWatch::SocketFileWatch(std::filesystem::path path)
    : path_(std::move(path)), events_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {}

bool SocketFileWatch::isMissing() const {
  std::error_code ignored;
  return path_.is_absolute() && !std::filesystem::exists(path_, ignored);
}

std::pair<std::filesystem::path, std::string> SocketFileWatch::nearest() const {
  std::filesystem::path awaited = path_;
  std::error_code ignored;
  while (awaited.has_relative_path() && !std::filesystem::is_directory(awaited.parent_path(), ignored)) {
    awaited = awaited.parent_path();
  }
  return {awaited.parent_path(), awaited.filename()};
}

void SocketFileWatch::start() {
  if (!path_.is_absolute()) return;
  auto place = nearest();
  while (true) {
    stop();
    watch_ = inotify_add_watch(events_.number(), place.first.c_str(),
                               IN_CREATE | IN_MOVED_TO | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR);
    awaited_ = place.second;
    // A folder may have been made between looking for it and watching.
    auto now = nearest();
    if (now == place) return;
    place = std::move(now);
  }
}

void SocketFileWatch::stop() {
  if (watch_ >= 0) inotify_rm_watch(events_.number(), watch_);
  watch_ = -1;
}

bool SocketFileWatch::takeEvents() {
  alignas(inotify_event) std::array<char, 16 * (sizeof(inotify_event) + NAME_MAX + 1)> buffer;
  bool hasAppeared = false;
  ssize_t size = 0;
  while ((size = read(events_.number(), buffer.data(), buffer.size())) > 0) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
      const auto& event = *reinterpret_cast<const inotify_event*>(buffer.data() + at);
      hasAppeared = hasAppeared || isRelevant(event);
      at += sizeof(inotify_event) + event.len;
    }
  }
  return hasAppeared;
}

bool SocketFileWatch::isRelevant(const inotify_event& event) const {
  if ((event.mask & IN_Q_OVERFLOW) != 0) return true;
  if (event.wd != watch_) return false;
  return event.len == 0 || awaited_ == event.name;
}

}  // namespace orvel
