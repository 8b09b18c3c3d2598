#pragma once

#include "tools/PhoneResult.hpp"

#include <cstddef>
#include <filesystem>
#include <string_view>
#include <utility>

namespace orvel::phone {

/// A folder that receives the frames of a mirror as numbered pictures.
///
/// Threads: one at a time.
class FrameFolder {
 public:
  explicit FrameFolder(std::filesystem::path path) : path_(std::move(path)) {}

  const std::filesystem::path& path() const { return path_; }

  /// Makes the folder if it is not there.
  Failure prepare() const;

  /// Writes the frame of this number; one that is there is replaced.
  Failure write(std::size_t number, std::string_view jpeg) const;

 private:
  const std::filesystem::path path_;
};

}  // namespace orvel::phone
