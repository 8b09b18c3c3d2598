#pragma once

#include <xcb/shm.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace orvel {

class X11Connection;

/// Memory into which the X server writes pixels itself. It has no name, so nothing of it is left behind by a crash.
///
/// Threads: one at a time; making it waits for the server.
class SharedMemory {
 public:
  /// Null when there is none to be had, as on a server on another computer.
  static std::unique_ptr<SharedMemory> make(const X11Connection& connection, std::size_t size);

  ~SharedMemory();
  SharedMemory(const SharedMemory&) = delete;
  SharedMemory& operator=(const SharedMemory&) = delete;

  std::uint8_t* bytes() const { return bytes_; }
  xcb_shm_seg_t segment() const { return segment_; }

 private:
  SharedMemory(const X11Connection& connection, std::uint8_t* bytes, std::size_t size);
  bool attach(int descriptor);

  const X11Connection& connection_;
  std::uint8_t* const bytes_;
  const std::size_t size_;
  const xcb_shm_seg_t segment_;
  bool isAttached_ = false;
};

}  // namespace orvel
