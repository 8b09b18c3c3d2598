#include "bench/SlowLink.hpp"

#include <fcntl.h>
#include <linux/if.h>
#include <linux/if_tun.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <future>
#include <stdexcept>
#include <stop_token>
#include <utility>
#include <vector>

namespace orvel::bench {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr const char* farAddress = "10.87.0.2";
constexpr std::size_t largestPacket = 65536;
constexpr std::chrono::milliseconds longestWait{50};

void run(const std::string& command) {
  if (std::system(command.c_str()) != 0) throw std::runtime_error("this failed: " + command);
}

/// An interface whose packets are read from and written to the descriptor, in the network of the calling thread.
Descriptor openInterface(const std::string& address, const std::string& peer) {
  Descriptor interface(open("/dev/net/tun", O_RDWR | O_NONBLOCK | O_CLOEXEC));
  ifreq request{};
  request.ifr_flags = IFF_TUN | IFF_NO_PI;
  std::strncpy(request.ifr_name, "slow0", IFNAMSIZ - 1);
  if (!interface.isOpen() || ioctl(interface.get(), TUNSETIFF, &request) != 0) {
    throw std::runtime_error("no virtual interface can be made");
  }
  // The congestion control that most desktops use, whatever this one does.
  run("ip addr add " + address + " dev slow0 && ip link set slow0 up && ip route add " + peer +
      " dev slow0 congctl cubic");
  return interface;
}

/// Packets on their way in one direction.
class Direction {
 public:
  Direction(int from, int to, const SlowLink::Pace& pace) : from_(from), to_(to), pace_(pace) {}

  void carry(const std::stop_token& ended) {
    while (!ended.stop_requested()) {
      pollfd readable{from_, POLLIN, 0};
      const auto wait = timeToNext();
      const timespec limit{0, std::chrono::duration_cast<std::chrono::nanoseconds>(wait).count()};
      ppoll(&readable, 1, &limit, nullptr);
      take();
      deliver();
    }
  }

 private:
  struct Packet {
    SteadyClock::time_point due;
    std::vector<char> bytes;
  };

  SteadyClock::duration timeToNext() const {
    if (underWay_.empty()) return longestWait;
    const auto rest = underWay_.front().due - SteadyClock::now();
    return std::clamp<SteadyClock::duration>(rest, SteadyClock::duration::zero(), longestWait);
  }

  void take() {
    while (true) {
      const ssize_t size = read(from_, buffer_.data(), buffer_.size());
      if (size <= 0) return;
      const auto now = SteadyClock::now();
      const auto start = std::max(now, free_);
      const std::chrono::duration<double> queued = start - now;
      if (queued.count() * pace_.bytesPerSecond > static_cast<double>(pace_.mostQueuedBytes)) continue;
      free_ = start + inClock(std::chrono::duration<double>(static_cast<double>(size) / pace_.bytesPerSecond));
      underWay_.push_back({free_ + inClock(pace_.delay), {buffer_.data(), buffer_.data() + size}});
    }
  }

  void deliver() {
    while (!underWay_.empty() && underWay_.front().due <= SteadyClock::now()) {
      const Packet& packet = underWay_.front();
      // A packet that the other side has no room for is lost, as on any network.
      static_cast<void>(!write(to_, packet.bytes.data(), packet.bytes.size()));
      underWay_.pop_front();
    }
  }

  static SteadyClock::duration inClock(std::chrono::duration<double> duration) {
    return std::chrono::duration_cast<SteadyClock::duration>(duration);
  }

  const int from_;
  const int to_;
  const SlowLink::Pace pace_;
  SteadyClock::time_point free_;  // when the last packet taken will have gone
  std::deque<Packet> underWay_;
  std::vector<char> buffer_ = std::vector<char>(largestPacket);
};

/// On a thread of its own, to whose sockets alone the network belongs that it enters. What it throws comes out here.
void runElsewhere(const std::function<void()>& body) {
  std::packaged_task<void()> task(body);
  auto done = task.get_future();
  std::jthread thread(std::move(task));
  done.get();
}

}  // namespace

SlowLink::SlowLink(const Pace& pace) : near_(openInterface(nearAddress, farAddress)) {
  runElsewhere([this] {
    if (unshare(CLONE_NEWNET) != 0) throw std::runtime_error("no second network can be made");
    far_ = openInterface(farAddress, nearAddress);
    farNetwork_ = Descriptor(open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC));
  });
  const auto carry = [pace](int from, int to) {
    return [=](const std::stop_token& ended) { Direction(from, to, pace).carry(ended); };
  };
  there_ = std::jthread(carry(near_.get(), far_.get()));
  back_ = std::jthread(carry(far_.get(), near_.get()));
}

SlowLink::~SlowLink() = default;

void SlowLink::onFarSide(const std::function<void()>& body) {
  runElsewhere([&] {
    if (setns(farNetwork_.get(), CLONE_NEWNET) != 0) throw std::runtime_error("the far network cannot be entered");
    body();
  });
}

}  // namespace orvel::bench
