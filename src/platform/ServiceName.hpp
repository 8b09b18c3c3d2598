#pragma once

#include <string>

namespace orvel {

/// As much of `name`, which is UTF-8, as an announcement by Bonjour can hold, in whole characters. Threads: any.
inline std::string fittingServiceName(const std::string& name) {
  constexpr std::size_t longest = 63;
  if (name.size() <= longest) return name;
  std::size_t end = longest;
  while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
  return name.substr(0, end);
}

}  // namespace orvel
