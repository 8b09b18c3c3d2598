#include "platform/linux/capture/WakeUp.hpp"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <ctime>

namespace orvel {
namespace {

timespec timeUntil(WakeUp::Time end) {
  using std::chrono::nanoseconds;
  const auto left = std::max(nanoseconds(0), nanoseconds(end - std::chrono::steady_clock::now()));
  const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
  return {.tv_sec = seconds.count(), .tv_nsec = (left - seconds).count()};
}

}  // namespace

WakeUp::WakeUp(int descriptor) : descriptor_(descriptor), calls_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void WakeUp::call() const {
  eventfd_write(calls_.number(), 1);
}

bool WakeUp::sleep(Minds minds, std::optional<Time> end) const {
  const short minded = minds == Minds::everything ? POLLIN : 0;
  std::array<pollfd, 2> awaited{pollfd{descriptor_, minded, 0}, pollfd{calls_.number(), POLLIN, 0}};
  const timespec limit = end ? timeUntil(*end) : timespec{};
  ppoll(awaited.data(), awaited.size(), end ? &limit : nullptr, nullptr);
  if (awaited[1].revents != 0) calls_.clear();
  return awaited[0].revents != 0;
}

}  // namespace orvel
