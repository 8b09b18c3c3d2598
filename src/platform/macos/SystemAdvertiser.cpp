#include "platform/macos/SystemAdvertiser.hpp"

#include "base/UTF8.hpp"
#include "platform/ServiceName.hpp"
#include "platform/macos/WakeUpPipe.hpp"

#include <arpa/inet.h>
#include <dns_sd.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace orvel {
namespace {

using std::chrono::milliseconds;

/// A daemon that restarts is back soon; a permission that the user has not given may take days.
constexpr std::array retryDelays = {milliseconds(50), milliseconds(200), milliseconds(1000), milliseconds(5000),
                                    milliseconds(30000)};

/// What is announced: where the port of this computer leads to.
struct BonjourService {
  std::string name;
  std::string type;
  std::uint16_t port = 0;
};

/// A service that the system's daemon was asked to announce, for as long as this lives. The daemon takes another name
/// when that one is taken.
///
/// Threads: one. Making it may take as long as the daemon does.
class BonjourRegistration {
 public:
  explicit BonjourRegistration(const BonjourService& service);
  ~BonjourRegistration();
  BonjourRegistration(const BonjourRegistration&) = delete;
  BonjourRegistration& operator=(const BonjourRegistration&) = delete;

  /// Why it is not announced, and never will be by this registration; kDNSServiceErr_NoError otherwise.
  DNSServiceErrorType error() const { return error_; }

  /// Whether the daemon has said that the service is announced.
  bool isConfirmed() const { return isConfirmed_; }

  /// Becomes readable when the daemon has replied; `process` then handles the reply.
  int descriptor() const;
  void process();

 private:
  void answered(DNSServiceErrorType error);

  DNSServiceRef reference_ = nullptr;
  DNSServiceErrorType error_ = kDNSServiceErr_NoError;
  bool isConfirmed_ = false;
};

BonjourRegistration::BonjourRegistration(const BonjourService& service) {
  // The library may abort the program for another encoding.
  if (!isValidUTF8(service.name)) {
    error_ = kDNSServiceErr_BadParam;
    return;
  }
  constexpr DNSServiceFlags none = 0;
  constexpr std::uint32_t everyInterface = 0;
  error_ = DNSServiceRegister(
      &reference_, none, everyInterface, fittingServiceName(service.name).c_str(), service.type.c_str(), nullptr,
      nullptr, htons(service.port), 0, nullptr,
      [](DNSServiceRef, DNSServiceFlags, DNSServiceErrorType error, const char*, const char*, const char*, void* self) {
        static_cast<BonjourRegistration*>(self)->answered(error);
      },
      this);
  // A failed call leaves an invalid reference behind.
  if (error_ != kDNSServiceErr_NoError) reference_ = nullptr;
}

BonjourRegistration::~BonjourRegistration() {
  if (reference_ != nullptr) DNSServiceRefDeallocate(reference_);
}

int BonjourRegistration::descriptor() const {
  return reference_ == nullptr ? -1 : DNSServiceRefSockFD(reference_);
}

void BonjourRegistration::process() {
  const DNSServiceErrorType error = DNSServiceProcessResult(reference_);
  if (error != kDNSServiceErr_NoError) error_ = error;
}

void BonjourRegistration::answered(DNSServiceErrorType error) {
  error_ = error;
  isConfirmed_ = error == kDNSServiceErr_NoError;
}

}  // namespace

/// What is to be announced, and the pipe that wakes the thread when it changes. Threads: any.
class SystemAdvertiser::Orders {
 public:
  struct State {
    std::optional<BonjourService> service;
    bool isFinished = false;
  };

  void announce(std::optional<BonjourService> service) {
    state_.withLock([&](State& state) { state.service = std::move(service); });
    pipe_.wakeUp();
  }

  void finish() {
    state_.withLock([](State& state) { state.isFinished = true; });
    pipe_.wakeUp();
  }

  State take() {
    pipe_.clear();
    return state_.withLock([](const State& state) { return state; });
  }

  int descriptor() const { return pipe_.descriptor(); }

 private:
  Guarded<State> state_;
  const WakeUpPipe pipe_;
};

/// Keeps the daemon informed of what is to be announced. Threads: its own one alone.
class SystemAdvertiser::Announcer {
 public:
  explicit Announcer(Orders& orders) : orders_(orders) {}

  /// Returns once the orders are finished.
  void run();

 private:
  void handleOrders();
  void announce();
  void checkRegistration();
  int untilRetry() const;

  Orders& orders_;
  std::optional<BonjourService> service_;
  std::optional<BonjourRegistration> registration_;
  std::size_t failures_ = 0;
  bool isFinished_ = false;
};

void SystemAdvertiser::Announcer::run() {
  while (!isFinished_) {
    std::array<pollfd, 2> watched{pollfd{.fd = orders_.descriptor(), .events = POLLIN, .revents = 0},
                                  pollfd{.fd = -1, .events = POLLIN, .revents = 0}};
    if (registration_) watched[1].fd = registration_->descriptor();
    const int count = poll(watched.data(), watched.size(), untilRetry());
    if (watched[0].revents != 0) {
      handleOrders();
    } else if (watched[1].revents != 0) {
      registration_->process();
      checkRegistration();
    } else if (count == 0) {
      announce();
    }
  }
}

void SystemAdvertiser::Announcer::handleOrders() {
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
  checkRegistration();
}

void SystemAdvertiser::Announcer::checkRegistration() {
  const DNSServiceErrorType error = registration_->error();
  if (error == kDNSServiceErr_NoError) {
    if (registration_->isConfirmed()) failures_ = 0;
    return;
  }
  registration_.reset();
  ++failures_;
  // An invalid request never becomes valid, so it is not sent again.
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
