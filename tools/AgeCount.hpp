#pragma once

#include <chrono>
#include <cstddef>
#include <map>

namespace orvel::phone {

/// How often which age was seen. It grows with the number of different ages only, which are at most an hour long; when
/// clocks disagree they may be negative.
///
/// Threads: one at a time.
class AgeCount {
 public:
  using Age = std::chrono::milliseconds;

  void add(Age age);

  std::size_t count() const { return count_; }

  /// The smallest age that at least this share of all does not exceed; `share` is above 0, at most 1. Only when there
  /// is one.
  Age quantile(double share) const;

 private:
  std::map<Age, std::size_t> times_;
  std::size_t count_ = 0;
};

}  // namespace orvel::phone
