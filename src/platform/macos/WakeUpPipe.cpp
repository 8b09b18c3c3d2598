#include "platform/macos/WakeUpPipe.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <array>

namespace orvel {

WakeUpPipe::WakeUpPipe() {
  if (pipe(ends_) != 0) return;
  for (const int end : ends_) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(end, F_SETFL, O_NONBLOCK);
  }
}

WakeUpPipe::~WakeUpPipe() {
  for (const int end : ends_) {
    if (end >= 0) close(end);
  }
}

void WakeUpPipe::wakeUp() const {
  const char any = 0;
  [[maybe_unused]] const ssize_t size = write(ends_[1], &any, 1);
}

void WakeUpPipe::clear() const {
  std::array<char, 64> bytes;
  while (read(ends_[0], bytes.data(), bytes.size()) > 0) {
  }
}

}  // namespace orvel
