#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// The user's preferences. What is written outlives the program; what cannot be read counts as missing.
/// Threads: any.
class Preferences {
 public:
  virtual ~Preferences() = default;

  virtual std::optional<std::string> string(const std::string& key) const = 0;
  virtual void setString(const std::string& key, const std::string& value) = 0;

  /// Empty when missing.
  virtual std::vector<std::string> strings(const std::string& key) const = 0;
  virtual void setStrings(const std::string& key, const std::vector<std::string>& values) = 0;

  virtual void remove(const std::string& key) = 0;
};

}  // namespace orvel
