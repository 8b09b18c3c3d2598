#include "platform/linux/SystemAdvertiser.hpp"

#include "platform/ServiceName.hpp"
#include "platform/linux/OwnedDescriptor.hpp"
#include "platform/linux/SocketFileWatch.hpp"
#include "platform/linux/files/Files.hpp"

#include <avahi-client/client.h>
#include <avahi-client/publish.h>
#include <avahi-common/alternative.h>
#include <avahi-common/error.h>
#include <avahi-common/malloc.h>
#include <avahi-common/simple-watch.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <utility>

namespace orvel {
namespace {

using std::chrono::milliseconds;

constexpr int nameAttempts = 100;

/// A bus that has just made its socket does not listen yet; one that does not answer after these will not soon.
constexpr std::array retryDelays = {milliseconds(50), milliseconds(200), milliseconds(1000), milliseconds(5000),
                                    milliseconds(30000)};

struct Service {
  std::string name;
  std::string type;
  std::uint16_t port = 0;
};

std::string systemBusSocket() {
  const std::string address = environmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
  if (address.empty()) return "/run/dbus/system_bus_socket";
  constexpr std::string_view prefix = "unix:path=";
  const std::size_t start = address.find(prefix);
  if (start == std::string_view::npos) return {};
  const std::string path = address.substr(start + prefix.size());
  return path.substr(0, path.find_first_of(",;"));
}

}  // namespace

/// What is to be announced, and the event that wakes the thread on a change. Threads: any.
class SystemAdvertiser::Orders {
 public:
  struct State {
    std::optional<Service> service;
    bool isFinished = false;
  };

  void announce(std::optional<Service> service) {
    state_.withLock([&](State& state) { state.service = std::move(service); });
    wake();
  }

  void finish() {
    state_.withLock([](State& state) { state.isFinished = true; });
    wake();
  }

  State take() {
    wakeUp_.clear();
    return state_.withLock([](const State& state) { return state; });
  }

  int wakeUp() const { return wakeUp_.number(); }

 private:
  void wake() const { eventfd_write(wakeUp_.number(), 1); }

  Guarded<State> state_;
  const OwnedDescriptor wakeUp_{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

/// Keeps the Avahi daemon informed of what is to be announced. Threads: its own one alone.
class SystemAdvertiser::Announcer {
 public:
  explicit Announcer(Orders& orders);
  ~Announcer();
  Announcer(const Announcer&) = delete;
  Announcer& operator=(const Announcer&) = delete;

  /// Returns once the orders are finished.
  void run();

 private:
  template <void (Announcer::*react)()>
  void watch(int descriptor);

  void ordersCame();
  void socketAppeared();
  void retryCame();

  void connect();
  void disconnect();
  void connectLater();
  void clientChanged(AvahiClientState state);
  void groupChanged(AvahiEntryGroupState state);
  void publish();
  int addService();
  void takeAnotherName();

  Orders& orders_;
  SocketFileWatch busSocket_{systemBusSocket()};
  const OwnedDescriptor retryTimer_{timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)};
  const std::unique_ptr<AvahiSimplePoll, decltype(&avahi_simple_poll_free)> poll_{avahi_simple_poll_new(),
                                                                                  avahi_simple_poll_free};
  AvahiClient* client_ = nullptr;
  AvahiEntryGroup* group_ = nullptr;
  std::optional<Service> service_;
  std::string name_;
  std::size_t failures_ = 0;
  bool isFinished_ = false;
};

SystemAdvertiser::Announcer::Announcer(Orders& orders) : orders_(orders) {
  if (poll_ == nullptr) return;
  watch<&Announcer::ordersCame>(orders_.wakeUp());
  watch<&Announcer::socketAppeared>(busSocket_.descriptor());
  watch<&Announcer::retryCame>(retryTimer_.number());
}

SystemAdvertiser::Announcer::~Announcer() {
  disconnect();
}

void SystemAdvertiser::Announcer::run() {
  if (poll_ == nullptr) return;
  while (!isFinished_ && avahi_simple_poll_iterate(poll_.get(), -1) == 0) {
  }
}

template <void (SystemAdvertiser::Announcer::*react)()>
void SystemAdvertiser::Announcer::watch(int descriptor) {
  if (descriptor < 0) return;
  const AvahiPoll* api = avahi_simple_poll_get(poll_.get());
  api->watch_new(
      api, descriptor, AVAHI_WATCH_IN,
      [](AvahiWatch*, int, AvahiWatchEvent, void* self) { (static_cast<Announcer*>(self)->*react)(); }, this);
}

void SystemAdvertiser::Announcer::ordersCame() {
  Orders::State orders = orders_.take();
  isFinished_ = orders.isFinished;
  service_ = std::move(orders.service);
  if (isFinished_) return;
  failures_ = 0;
  if (!service_) {
    disconnect();
  } else if (client_ == nullptr) {
    connect();
  } else {
    name_ = fittingServiceName(service_->name);
    clientChanged(avahi_client_get_state(client_));
  }
}

void SystemAdvertiser::Announcer::socketAppeared() {
  if (!busSocket_.takeEvents() || client_ != nullptr || !service_) return;
  failures_ = 0;
  connect();
}

void SystemAdvertiser::Announcer::retryCame() {
  retryTimer_.clear();
  if (service_) connect();
}

void SystemAdvertiser::Announcer::connect() {
  disconnect();
  name_ = fittingServiceName(service_->name);
  // Watched from before the attempt, so that no moment is left out.
  busSocket_.start();
  int error = 0;
  client_ = avahi_client_new(
      avahi_simple_poll_get(poll_.get()), AVAHI_CLIENT_NO_FAIL,
      [](AvahiClient*, AvahiClientState state, void* self) { static_cast<Announcer*>(self)->clientChanged(state); },
      this, &error);
  if (client_ == nullptr) {
    connectLater();
  } else {
    busSocket_.stop();
    clientChanged(avahi_client_get_state(client_));
  }
}

void SystemAdvertiser::Announcer::disconnect() {
  const itimerspec never{};
  timerfd_settime(retryTimer_.number(), 0, &never, nullptr);
  busSocket_.stop();
  if (client_ != nullptr) avahi_client_free(client_);
  client_ = nullptr;
  group_ = nullptr;
}

/// Not at once, as a client may not be freed by its own callback while it is being made.
void SystemAdvertiser::Announcer::connectLater() {
  // The watch notices when the socket appears.
  const bool isHopeless = client_ == nullptr && busSocket_.isMissing();
  if (isHopeless || failures_ == retryDelays.size()) return;
  const auto delay = std::chrono::nanoseconds(retryDelays[failures_]).count();
  const itimerspec once{.it_interval = {}, .it_value = {.tv_sec = delay / 1000000000, .tv_nsec = delay % 1000000000}};
  timerfd_settime(retryTimer_.number(), 0, &once, nullptr);
  ++failures_;
}

void SystemAdvertiser::Announcer::clientChanged(AvahiClientState state) {
  if (client_ == nullptr) return;
  switch (state) {
    case AVAHI_CLIENT_S_RUNNING:
      failures_ = 0;
      publish();
      break;
    case AVAHI_CLIENT_S_COLLISION:
    case AVAHI_CLIENT_S_REGISTERING:
      // The computer's own name is changing: the announcement follows once that is settled.
      if (group_ != nullptr) avahi_entry_group_reset(group_);
      break;
    case AVAHI_CLIENT_FAILURE:
      connectLater();
      break;
    case AVAHI_CLIENT_CONNECTING:
      failures_ = 0;
      break;
  }
}

void SystemAdvertiser::Announcer::groupChanged(AvahiEntryGroupState state) {
  if (state == AVAHI_ENTRY_GROUP_COLLISION) {
    takeAnotherName();
    publish();
  } else if (state == AVAHI_ENTRY_GROUP_FAILURE) {
    connectLater();
  }
}

void SystemAdvertiser::Announcer::publish() {
  if (group_ != nullptr) {
    avahi_entry_group_reset(group_);
  } else {
    group_ = avahi_entry_group_new(
        client_,
        [](AvahiEntryGroup*, AvahiEntryGroupState state, void* self) {
          static_cast<Announcer*>(self)->groupChanged(state);
        },
        this);
  }
  if (group_ == nullptr) return;
  int result = addService();
  for (int attempt = 1; result == AVAHI_ERR_COLLISION && attempt < nameAttempts; ++attempt) {
    takeAnotherName();
    result = addService();
  }
  if (result == AVAHI_OK) avahi_entry_group_commit(group_);
}

int SystemAdvertiser::Announcer::addService() {
  return avahi_entry_group_add_service_strlst(group_, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, AvahiPublishFlags{},
                                              name_.c_str(), service_->type.c_str(), nullptr, nullptr, service_->port,
                                              nullptr);
}

void SystemAdvertiser::Announcer::takeAnotherName() {
  const std::unique_ptr<char, decltype(&avahi_free)> other(avahi_alternative_service_name(name_.c_str()), avahi_free);
  if (other != nullptr) name_ = other.get();
}

SystemAdvertiser::SystemAdvertiser() : orders_(std::make_shared<Orders>()) {}

// Calls to a bus or daemon that has been stopped end after half a minute only.
SystemAdvertiser::~SystemAdvertiser() {
  orders_->finish();
}

void SystemAdvertiser::advertise(const std::string& name, const std::string& type, std::uint16_t port) {
  orders_->announce(Service{name, type, port});
  thread_.withLock([this](LeavableThread& thread) {
    thread.start([orders = orders_] {
      pthread_setname_np(pthread_self(), "orvel.mdns");
      Announcer(*orders).run();
    });
  });
}

void SystemAdvertiser::withdraw() {
  orders_->announce(std::nullopt);
}

}  // namespace orvel
