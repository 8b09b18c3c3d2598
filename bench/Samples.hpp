#pragma once

#include <cstddef>
#include <vector>

namespace orvel::bench {

/// Measured values of one kind. Threads: one at a time.
class Samples {
 public:
  void add(double value) { values_.push_back(value); }

  std::size_t count() const { return values_.size(); }

  /// The smallest measured value that at least this share of all values does not exceed; `share` is above 0, at most 1.
  double quantile(double share) const;

  double median() const { return quantile(0.5); }
  double least() const;
  double greatest() const { return quantile(1); }

 private:
  std::vector<double> values_;
};

}  // namespace orvel::bench
