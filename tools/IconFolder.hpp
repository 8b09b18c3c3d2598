#pragma once

#include "tools/PhoneResult.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace orvel::phone {

/// Whether a file may be named after this id, which anybody may have thought up: it is a plain name, neither a way to
/// another folder nor hidden, without control characters, and no longer than file systems permit. Threads: any.
bool isSafeFileName(std::string_view id);

/// The picture in the host's base64 text; nothing when it is not base64 or not a PNG. Threads: any.
std::optional<std::string> pngIn(std::string_view base64);

/// A folder that receives icons.
///
/// Threads: one at a time.
class IconFolder {
 public:
  explicit IconFolder(std::filesystem::path path) : path_(std::move(path)) {}

  /// Makes the folder if it is not there.
  Failure prepare() const;

  /// Writes a picture under an id that is a safe file name; one that is there is replaced.
  Failure write(const std::string& id, std::string_view png) const;

 private:
  const std::filesystem::path path_;
};

}  // namespace orvel::phone
