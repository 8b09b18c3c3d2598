#include "bench/Samples.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace orvel::bench {

double Samples::quantile(double share) const {
  if (values_.empty()) throw std::runtime_error("nothing was measured");
  auto ordered = values_;
  const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(ordered.size())));
  const auto place = ordered.begin() + static_cast<std::ptrdiff_t>(std::max<std::size_t>(rank, 1) - 1);
  std::ranges::nth_element(ordered, place);
  return *place;
}

double Samples::least() const {
  return quantile(1.0 / static_cast<double>(values_.size() + 1));
}

}  // namespace orvel::bench
