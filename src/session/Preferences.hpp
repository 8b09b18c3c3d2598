#pragma once

#include <optional>
#include <string>

namespace orvel {

/// The user's preferences. What is written outlives the program.
///
/// Threads: any. Reading a text is for where nothing may wait: it is answered from memory unless the stored one has
/// changed. All else may take as long as the file system takes.
class Preferences {
 public:
  virtual ~Preferences() = default;

  /// Nothing when it is missing.
  virtual std::optional<std::string> string(const std::string& key) const = 0;
  virtual void setString(const std::string& key, const std::string& value) = 0;

  /// Sets a text that was missing. Where what is stored cannot be read, which is not to be missing, it holds in memory
  /// alone, and gives way to the stored one as soon as that can be read.
  virtual void setMissing(const std::string& key, const std::string& value) = 0;

  /// Adds a text to the end of a list unless the list has it.
  virtual void add(const std::string& key, const std::string& value) = 0;

  /// Removes a text or a list.
  virtual void remove(const std::string& key) = 0;
};

}  // namespace orvel
