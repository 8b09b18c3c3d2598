#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace orvel {

/// Bytes that nobody changes any more and that live for as long as somebody holds them, wherever they were made.
/// Threads: any.
struct SharedBytes {
  std::shared_ptr<const std::uint8_t> data;
  std::size_t size = 0;
};

}  // namespace orvel
