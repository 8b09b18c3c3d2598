#include "platform/posix/HostName.hpp"

#include "base/UTF8.hpp"

#include <unistd.h>

#include <array>
#include <cstddef>

namespace orvel {
namespace {

constexpr std::size_t longestHostName = 255;

}  // namespace

std::string HostName::read() {
  std::array<char, longestHostName + 1> name{};
  if (gethostname(name.data(), longestHostName) != 0) return {};
  return wellFormedUTF8(name.data());
}

}  // namespace orvel
