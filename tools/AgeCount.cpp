#include "tools/AgeCount.hpp"

#include <algorithm>

namespace orvel::phone {

void AgeCount::add(Age age) {
  constexpr Age longest = std::chrono::hours(1);
  ++times_[std::clamp(age, -longest, longest)];
  ++count_;
}

AgeCount::Age AgeCount::quantile(double share) const {
  const double wanted = share * static_cast<double>(count_);
  std::size_t passed = 0;
  for (const auto& [age, times] : times_) {
    passed += times;
    if (static_cast<double>(passed) >= wanted) return age;
  }
  return times_.rbegin()->first;
}

}  // namespace orvel::phone
