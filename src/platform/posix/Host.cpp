#include "platform/posix/Host.hpp"

#include "base/UTF8.hpp"

#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

namespace orvel {
namespace {

constexpr std::size_t longestHostName = 255;

std::optional<NetworkInterface> describe(const ifaddrs& entry) {
  if (entry.ifa_addr == nullptr || entry.ifa_addr->sa_family != AF_INET) return std::nullopt;
  std::array<char, NI_MAXHOST> address{};
  if (getnameinfo(entry.ifa_addr, sizeof(sockaddr_in), address.data(), address.size(), nullptr, 0, NI_NUMERICHOST) !=
      0) {
    return std::nullopt;
  }
  return NetworkInterface{.name = wellFormedUTF8(entry.ifa_name),
                          .address = address.data(),
                          .isUp = (entry.ifa_flags & IFF_UP) != 0,
                          .isLoopback = (entry.ifa_flags & IFF_LOOPBACK) != 0};
}

}  // namespace

std::string Host::name() {
  std::array<char, longestHostName + 1> name{};
  if (gethostname(name.data(), longestHostName) != 0) return {};
  return wellFormedUTF8(name.data());
}

std::vector<NetworkInterface> Host::interfaces() {
  ifaddrs* first = nullptr;
  if (getifaddrs(&first) != 0) return {};
  const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> list(first, freeifaddrs);
  std::vector<NetworkInterface> found;
  for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
    if (auto interface = describe(*entry)) found.push_back(std::move(*interface));
  }
  return found;
}

}  // namespace orvel
