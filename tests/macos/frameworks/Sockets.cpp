#include "frameworks/Sockets.hpp"

#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

fake::Sockets& fake::sockets() {
  static Sockets sockets;
  return sockets;
}

// The linker has these called instead of the real ones.
extern "C" {

int __wrap_getsockopt(int socket, int level, int name, void* value, socklen_t* size) {
  const auto connection = fake::sockets().connections.find(socket);
  if (connection == fake::sockets().connections.end() || level != IPPROTO_TCP || name != TCP_CONNECTION_INFO) {
    errno = EINVAL;
    return -1;
  }
  *size = std::min<socklen_t>(*size, sizeof connection->second);
  std::memcpy(value, &connection->second, *size);
  return 0;
}

int __wrap_setsockopt(int socket, int level, int name, const void* value, socklen_t size) {
  int number = 0;
  if (size != sizeof number || fake::sockets().refused.contains({level, name})) {
    errno = EINVAL;
    return -1;
  }
  std::memcpy(&number, value, sizeof number);
  fake::sockets().options[socket][{level, name}] = number;
  return 0;
}

}  // extern "C"
