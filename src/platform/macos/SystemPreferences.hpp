#pragma once

#include "session/Preferences.hpp"

#include <string>
#include <vector>

namespace orvel {

/// This program's domain of the user's defaults, named after its bundle identifier. What stands there under a wrong
/// type counts as missing. Threads: any.
class SystemPreferences final : public Preferences {
 public:
  std::optional<std::string> string(const std::string& key) const override;
  void setString(const std::string& key, const std::string& value) override;
  void setMissing(const std::string& key, const std::string& value) override;
  void add(const std::string& key, const std::string& value) override;

  /// The whole list; empty when missing.
  std::vector<std::string> strings(const std::string& key) const;

  /// Replaces the whole list.
  void setStrings(const std::string& key, const std::vector<std::string>& values);
  void remove(const std::string& key) override;
};

}  // namespace orvel
