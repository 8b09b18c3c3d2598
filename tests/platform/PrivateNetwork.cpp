#include "platform/PrivateNetwork.hpp"

#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace orvel {
namespace {

bool raiseLoopback() {
  const int socketNumber = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ifreq request{};
  std::strcpy(request.ifr_name, "lo");
  request.ifr_flags = IFF_UP | IFF_RUNNING;
  const bool raised = ioctl(socketNumber, SIOCSIFFLAGS, &request) == 0;
  close(socketNumber);
  return raised;
}

std::string because(const char* what) {
  return std::string(what) + ": " + std::strerror(errno);
}

}  // namespace

std::optional<std::string> enterPrivateNetwork() {
  if (unshare(CLONE_NEWNET | CLONE_NEWNS) != 0) return because("It needs root, for a network of its own");
  if (!raiseLoopback()) return because("The loopback interface stays down");
  if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return because("Mounts cannot be kept apart");
  if (mount("tmpfs", "/run", "tmpfs", 0, "mode=0755") != 0) return because("There is no /run of our own");
  // The daemon hands its folder to a user of its own, which a mere user namespace does not have.
  if (chown("/run", 1, 1) != 0 || chown("/run", 0, 0) != 0) return because("It needs root, for a daemon with a user");
  return std::nullopt;
}

}  // namespace orvel
