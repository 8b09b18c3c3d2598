#pragma once

#include "base/Guarded.hpp"
#include "session/Preferences.hpp"

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// The preferences in "orvel/orvel.conf" of the user's configuration folder, readable by the user alone. Every reading
/// sees what other processes have written; while no file can be opened, what was read before holds. What cannot be
/// stored is kept in memory, answered from there, and stored as soon as that is possible. A file of more than a
/// megabyte is none of ours and counts as empty.
///
/// Threads: any; one caller at a time touches the file.
class SystemPreferences final : public Preferences {
 public:
  SystemPreferences();

  std::optional<std::string> string(const std::string& key) const override;
  void setString(const std::string& key, const std::string& value) override;
  std::vector<std::string> strings(const std::string& key) const override;
  void setStrings(const std::string& key, const std::vector<std::string>& values) override;
  void remove(const std::string& key) override;

 private:
  /// As the file has it, a single text is a list of one; a list of none is as good as missing.
  using Texts = std::vector<std::string>;
  using Changes = std::map<std::string, Texts>;

  struct State {
    Changes unsaved;
    Changes known;  // as last read
  };

  void change(const std::string& key, Texts texts);
  Changes contents() const;
  bool store(const Changes& changes, std::chrono::milliseconds patience) const;

  const std::string folder_;
  const std::string file_;
  mutable Guarded<State> state_;
};

}  // namespace orvel
