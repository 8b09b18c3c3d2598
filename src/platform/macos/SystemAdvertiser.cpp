#include "platform/macos/SystemAdvertiser.hpp"

#include "platform/macos/bonjour/BonjourRegistration.hpp"
#include "platform/macos/bonjour/WakeUpPipe.hpp"

#include <poll.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <utility>

namespace orvel {
namespace {

using std::chrono::milliseconds;

/// A daemon that restarts is back soon; a permission that the user has not given may take days.
constexpr std::array retryDelays = {milliseconds(50), milliseconds(200), milliseconds(1000), milliseconds(5000),
                                    milliseconds(30000)};

}  // namespace

/// What is to be announced, and the bell that wakes the thread for a change. Threads: any.
class SystemAdvertiser::Orders {
 public:
  struct State {
    std::optional<BonjourService> service;
    bool isFinished = false;
  };

  void announce(std::optional<BonjourService> service) {
    state_.withLock([&](State& state) { state.service = std::move(service); });
    bell_.ring();
  }

  void finish() {
    state_.withLock([](State& state) { state.isFinished = true; });
    bell_.ring();
  }

  State take() {
    bell_.clear();
    return state_.withLock([](const State& state) { return state; });
  }

  int bell() const { return bell_.descriptor(); }

 private:
  Guarded<State> state_;
  const WakeUpPipe bell_;
};

/// Keeps the daemon informed of what is to be announced. Threads: its own one alone.
class SystemAdvertiser::Announcer {
 public:
  explicit Announcer(Orders& orders) : orders_(orders) {}

  /// Returns once the orders are finished.
  void run();

 private:
  void ordersCame();
  void announce();
  void look();
  int untilRetry() const;

  Orders& orders_;
  std::optional<BonjourService> service_;
  std::optional<BonjourRegistration> registration_;
  std::size_t failures_ = 0;
  bool isFinished_ = false;
};

void SystemAdvertiser::Announcer::run() {
  while (!isFinished_) {
    std::array<pollfd, 2> watched{pollfd{.fd = orders_.bell(), .events = POLLIN, .revents = 0},
                                  pollfd{.fd = -1, .events = POLLIN, .revents = 0}};
    if (registration_) watched[1].fd = registration_->descriptor();
    const int count = poll(watched.data(), watched.size(), untilRetry());
    if (watched[0].revents != 0) {
      ordersCame();
    } else if (watched[1].revents != 0) {
      registration_->process();
      look();
    } else if (count == 0) {
      announce();
    }
  }
}

void SystemAdvertiser::Announcer::ordersCame() {
  Orders::State orders = orders_.take();
  isFinished_ = orders.isFinished;
  service_ = std::move(orders.service);
  failures_ = 0;
  if (service_ && !isFinished_) {
    announce();
  } else {
    registration_.reset();
  }
}

void SystemAdvertiser::Announcer::announce() {
  registration_.reset();
  registration_.emplace(*service_);
  look();
}

void SystemAdvertiser::Announcer::look() {
  const DNSServiceErrorType error = registration_->error();
  if (error == kDNSServiceErr_NoError) {
    if (registration_->isConfirmed()) failures_ = 0;
    return;
  }
  registration_.reset();
  ++failures_;
  // What makes no sense now never will.
  if (error == kDNSServiceErr_BadParam) service_.reset();
}

/// In milliseconds; none when there is nothing to try again.
int SystemAdvertiser::Announcer::untilRetry() const {
  if (registration_ || !service_) return -1;
  return static_cast<int>(retryDelays[std::min(failures_, retryDelays.size()) - 1].count());
}

SystemAdvertiser::SystemAdvertiser() : orders_(std::make_shared<Orders>()) {}

SystemAdvertiser::~SystemAdvertiser() {
  orders_->finish();
}

void SystemAdvertiser::advertise(const std::string& name, const std::string& type, std::uint16_t port) {
  orders_->announce(BonjourService{name, type, port});
  thread_.withLock([this](LeavableThread& thread) { thread.start([orders = orders_] { Announcer(*orders).run(); }); });
}

void SystemAdvertiser::withdraw() {
  orders_->announce(std::nullopt);
}

}  // namespace orvel
