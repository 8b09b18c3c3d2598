#pragma once

#include <chrono>

/// Time as a phone reckons it. Threads: any.
namespace orvel::phone {

using Seconds = std::chrono::duration<double>;
using Moment = std::chrono::steady_clock::time_point;

/// The moment when `duration` will have passed.
inline Moment after(Seconds duration) {
  return std::chrono::steady_clock::now() + std::chrono::duration_cast<Moment::duration>(duration);
}

/// How long it is until then; negative when it has passed.
inline Seconds until(Moment moment) {
  return moment - std::chrono::steady_clock::now();
}

}  // namespace orvel::phone
