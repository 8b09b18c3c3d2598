#pragma once

#include <unistd.h>

#include <cstdint>

namespace orvel {

/// A file descriptor that is closed with its owner. Threads: one.
class OwnedDescriptor {
 public:
  explicit OwnedDescriptor(int number) : number_(number) {}
  ~OwnedDescriptor() {
    if (number_ >= 0) close(number_);
  }
  OwnedDescriptor(const OwnedDescriptor&) = delete;
  OwnedDescriptor& operator=(const OwnedDescriptor&) = delete;

  int number() const { return number_; }

  /// Forgets how often an event or timer descriptor was set off.
  void clear() const {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t size = read(number_, &count, sizeof count);
  }

 private:
  const int number_;
};

}  // namespace orvel
