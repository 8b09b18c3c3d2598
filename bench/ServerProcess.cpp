#include "bench/ServerProcess.hpp"

#include "desktop/Descriptor.hpp"
#include "desktop/Timeout.hpp"

#include <netinet/in.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <new>
#include <stdexcept>
#include <thread>

namespace orvel::bench {
namespace {

Tally& makeSharedTally() {
  void* const memory = mmap(nullptr, sizeof(Tally), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::runtime_error("no memory to share");
  return *new (memory) Tally;
}

}  // namespace

ServerProcess::ServerProcess(const std::function<void(Tally&)>& serve) : tally_(makeSharedTally()), pid_(fork()) {
  if (pid_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    serve(tally_);
    _exit(EXIT_FAILURE);
  }
  waitUntilListening();
}

ServerProcess::~ServerProcess() {
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
  munmap(&tally_, sizeof(Tally));
}

void ServerProcess::waitUntilListening() {
  const Deadline deadline(timeout);
  while (tally_.port == 0) {
    if (pid_ < 0 || deadline.left() == Milliseconds(0) || waitpid(pid_, nullptr, WNOHANG) != 0) {
      throw std::runtime_error("a server does not start");
    }
    std::this_thread::sleep_for(Milliseconds(1));
  }
}

std::uint16_t freePort() {
  const Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  socklen_t size = sizeof address;
  bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), size);
  getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

}  // namespace orvel::bench
