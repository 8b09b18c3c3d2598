#include "app/ServerHub.hpp"

#include "input/PermissionGate.hpp"
#include "session/Advertiser.hpp"
#include "session/ClientSession.hpp"
#include "session/Machine.hpp"
#include "session/PairingStore.hpp"

#include <boost/functional/hash.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include <algorithm>
#include <utility>

namespace orvel {
namespace {

constexpr int payloadVersion = 1;
constexpr Seconds permissionInterval{1.5};
constexpr Seconds keepAliveIdle{10};
constexpr std::size_t maximumMessageSize = 8'388'608;
constexpr std::size_t mostLingering = 8;  // each may hold as much as one message has
constexpr const char* serviceType = "_orvel._tcp";

/// Judged by the error, not by its words, which follow the user's language.
std::string wordingOf(const std::error_code& error) {
  if (error == std::errc::address_in_use) return "Port 8787 is taken. Quit whatever is using it, then hit Restart.";
  return error.message();
}

}  // namespace

std::string pairingPayload(const Machine& machine, PairingStore& pairing, std::uint16_t port) {
  return boost::json::serialize(boost::json::object{{"v", payloadVersion},
                                                    {"host", NetworkInfo::localAddress(machine).value_or("")},
                                                    {"port", port},
                                                    {"token", pairing.token()},
                                                    {"name", displayName(machine)}});
}

std::shared_ptr<ServerHub> ServerHub::make(const Dependencies& dependencies, std::uint16_t port) {
  std::shared_ptr<ServerHub> hub(new ServerHub(dependencies, port));
  dependencies.services.permission.publishTo([self = std::weak_ptr(hub)](bool trusted) {
    const auto live = self.lock();
    if (live) live->onMainThread([trusted](ServerHub& here) { here.permissionSeen(trusted); });
  });
  hub->watchPermission();
  return hub;
}

ServerHub::ServerHub(const Dependencies& dependencies, std::uint16_t port) : dependencies_(dependencies), port_(port) {}

ServerHub::~ServerHub() = default;

void ServerHub::observe(Observer observer) {
  observer_ = std::move(observer);
}

template <class Change>
void ServerHub::publish(Change&& change) {
  HubState next = state_;
  change(next);
  if (next == state_) return;
  if (observer_) observer_(next);
  state_ = std::move(next);
}

void ServerHub::onMainThread(std::function<void(ServerHub&)> step) {
  dependencies_.mainThread.post([self = weak_from_this(), step = std::move(step)] {
    if (const auto hub = self.lock()) step(*hub);
  });
}

void ServerHub::start() {
  stop();
  const std::uint64_t listening = ++starts_;
  live_.withLock([&](Live& live) { live.listening = listening; });
  listen(listening);
}

void ServerHub::listen(std::uint64_t listening) {
  listener_ = dependencies_.network.makeListener(
      {.port = port_, .keepAliveIdle = keepAliveIdle, .maximumMessageSize = maximumMessageSize});
  const auto self = weak_from_this();
  listener_->start({
      .stateChanged =
          [self, listening](Listener::State state, const std::error_code& error) {
            const auto hub = self.lock();
            if (!hub) return;
            hub->onMainThread([=](ServerHub& here) { here.listenerChanged(listening, state, error); });
          },
      .connected =
          [self, listening](std::unique_ptr<Transport> transport) {
            if (const auto hub = self.lock()) hub->adopt(listening, std::move(transport));
          },
  });
}

void ServerHub::listenerChanged(std::uint64_t listening, Listener::State state, const std::error_code& error) {
  // What a stopped listener still reports must not count as its successor's.
  if (listening != starts_ || !listener_) return;
  switch (state) {
    case Listener::State::ready:
      dependencies_.advertiser.advertise(displayName(dependencies_.services.machine), serviceType, port_);
      publish([](HubState& next) {
        next.isRunning = true;
        next.lastError.reset();
      });
      break;
    case Listener::State::cancelled:
      publish([](HubState& next) { next.isRunning = false; });
      break;
    case Listener::State::failed:
      publish([&](HubState& next) {
        next.isRunning = false;
        next.lastError = wordingOf(error);
      });
      break;
  }
}

void ServerHub::adopt(std::uint64_t listening, std::unique_ptr<Transport> transport) {
  const auto session = std::make_shared<ClientSession>(std::move(transport), weak_from_this(), dependencies_.services);
  const bool adopted = live_.withLock(
      [&](Live& live) { return live.listening == listening && live.sessions.emplace(session->id(), session).second; });
  if (adopted) session->start();
}

void ServerHub::stop() {
  const Live taken = live_.withLock([](Live& live) { return std::exchange(live, {}); });
  for (const auto& [id, session] : taken.sessions) session->cancel();
  for (const auto& [id, session] : taken.lingering) session->cancel();
  listener_.reset();
  dependencies_.advertiser.withdraw();
  onMainThread([](ServerHub& hub) {
    hub.publish([](HubState& next) {
      next.isRunning = false;
      next.clients.clear();
    });
  });
}

void ServerHub::disconnectAll() {
  for (const auto& session : sessions()) session->cancel();
  const Sessions lingering = live_.withLock([](const Live& live) { return live.lingering; });
  for (const auto& [id, session] : lingering) session->cancel();
}

std::vector<std::shared_ptr<ClientSession>> ServerHub::sessions() const {
  return live_.withLock([](const Live& live) {
    std::vector<std::shared_ptr<ClientSession>> all;
    all.reserve(live.sessions.size());
    for (const auto& [id, session] : live.sessions) all.push_back(session);
    return all;
  });
}

void ServerHub::publishClients() {
  // The names are read on the main thread, once for all who ask meanwhile: no older list overtakes a newer one, and a
  // thousand phones that leave at once cost one list.
  if (publishingClients_.exchange(true)) return;
  onMainThread([](ServerHub& hub) {
    hub.publishingClients_ = false;
    std::vector<std::string> names;
    for (const auto& session : hub.sessions()) names.push_back(session->deviceName());
    std::ranges::sort(names);
    hub.publish([&](HubState& next) { next.clients = std::move(names); });
  });
}

bool ServerHub::linger(const SessionID& id) {
  const bool hasRoom = live_.withLock([&](Live& live) {
    if (live.lingering.size() >= mostLingering) return false;
    return live.lingering.insert(live.sessions.extract(id)).inserted;
  });
  if (hasRoom) publishClients();
  return hasRoom;
}

void ServerHub::leave(const SessionID& id) {
  // Taken out whole, so that the last reference is not let go of under the lock.
  const auto left =
      live_.withLock([&](Live& live) { return std::pair(live.sessions.extract(id), live.lingering.extract(id)); });
  publishClients();
}

void ServerHub::setMirroring(bool on) {
  onMainThread([on](ServerHub& hub) { hub.publish([on](HubState& next) { next.mirroring = on; }); });
}

void ServerHub::watchPermission() {
  permissionWatch_ = std::make_unique<RepeatingTimer>(dependencies_.mainThread, dependencies_.clock, permissionInterval,
                                                      permissionInterval, [self = weak_from_this()] {
                                                        const auto hub = self.lock();
                                                        if (hub) hub->dependencies_.services.permission.refresh();
                                                      });
}

void ServerHub::permissionSeen(bool trusted) {
  publish([trusted](HubState& next) { next.accessibilityGranted = trusted; });
  if (lastKnownTrust_ == trusted) return;
  lastKnownTrust_ = trusted;
  for (const auto& session : sessions()) {
    if (session->authenticated()) session->send({{"t", "permission"}, {"accessibility", trusted}});
  }
}

std::string ServerHub::pairingPayload() const {
  return orvel::pairingPayload(dependencies_.services.machine, dependencies_.services.pairing, port_);
}

}  // namespace orvel
