#include "platform/linux/capture/SharedMemory.hpp"

#include "platform/linux/OwnedDescriptor.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>

#include <utility>

namespace orvel {
namespace {

constexpr std::pair<std::uint32_t, std::uint32_t> firstWithDescriptors{1, 2};

/// Only such a connection can carry a descriptor, and XCB gives up another one that is asked to.
bool isLocal(const X11Connection& connection) {
  int domain = 0;
  socklen_t size = sizeof domain;
  const int socket = xcb_get_file_descriptor(connection.get());
  return getsockopt(socket, SOL_SOCKET, SO_DOMAIN, &domain, &size) == 0 && domain == AF_UNIX;
}

bool canShareMemory(const X11Connection& connection) {
  if (!isLocal(connection) || connection.extension(xcb_shm_id) == nullptr) return false;
  const auto asked = xcb_shm_query_version(connection.get());
  const X11Answer<xcb_shm_query_version_reply_t> version{xcb_shm_query_version_reply(connection.get(), asked, nullptr)};
  return version && std::pair<std::uint32_t, std::uint32_t>(version->major_version, version->minor_version) >=
                        firstWithDescriptors;
}

/// Memory that is really there: a file that is only promised memory ends the program when the promise is broken.
std::uint8_t* mapNew(int descriptor, std::size_t size) {
  if (descriptor < 0 || posix_fallocate(descriptor, 0, static_cast<off_t>(size)) != 0) return nullptr;
  void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  return memory == MAP_FAILED ? nullptr : static_cast<std::uint8_t*>(memory);
}

}  // namespace

std::unique_ptr<SharedMemory> SharedMemory::make(const X11Connection& connection, std::size_t size) {
  if (!canShareMemory(connection)) return nullptr;
  const OwnedDescriptor file(memfd_create("orvel screen", MFD_CLOEXEC));
  std::uint8_t* bytes = mapNew(file.number(), size);
  if (bytes == nullptr) return nullptr;
  std::unique_ptr<SharedMemory> memory(new SharedMemory(connection, bytes, size));
  return memory->attach(file.number()) ? std::move(memory) : nullptr;
}

SharedMemory::SharedMemory(const X11Connection& connection, std::uint8_t* bytes, std::size_t size)
    : connection_(connection), bytes_(bytes), size_(size), segment_(xcb_generate_id(connection.get())) {}

SharedMemory::~SharedMemory() {
  if (isAttached_) xcb_shm_detach(connection_.get(), segment_);
  munmap(bytes_, size_);
}

bool SharedMemory::attach(int descriptor) {
  // The library closes what it has sent.
  const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
  if (copy < 0) return false;
  const auto asked = xcb_shm_attach_fd_checked(connection_.get(), segment_, copy, false);
  isAttached_ =
      X11Answer<xcb_generic_error_t>(xcb_request_check(connection_.get(), asked)) == nullptr && connection_.isAlive();
  return isAttached_;
}

}  // namespace orvel
