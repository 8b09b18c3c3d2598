#pragma once

#include "base/Guarded.hpp"
#include "base/RepeatingTimer.hpp"
#include "session/ClientSession.hpp"
#include "session/Network.hpp"

#include <boost/container_hash/hash.hpp>
#include <boost/uuid/uuid_hash.hpp>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace orvel {

class Advertiser;
class Machine;
class PairingStore;

/// What the hub reports to its observers.
struct HubState {
  bool isRunning = false;                  ///< The listener accepts phones.
  std::vector<std::string> clients{};      ///< The names of the connected phones, sorted.
  bool accessibilityGranted = false;       ///< This program may post input.
  std::optional<std::string> lastError{};  ///< The last listener error, in words for the user.
  bool mirroring = false;                  ///< A phone sees the screen.

  friend bool operator==(const HubState&, const HubState&) = default;
};

/// The JSON text that the pairing QR code encodes. Threads: any.
std::string pairingPayload(const Machine& machine, PairingStore& pairing, std::uint16_t port);

/// Owns the listener and the sessions, watches the permission, and publishes the state of it all.
///
/// Threads: made, started, stopped and observed on the main thread, on which also every change of the state happens;
/// what is said otherwise below is for any thread.
class ServerHub final : public SessionHub, public std::enable_shared_from_this<ServerHub> {
 public:
  struct Dependencies {
    Advertiser& advertiser;
    const Clock& clock;
    Executor& mainThread;
    Network& network;
    const SessionServices& services;
  };
  using Observer = std::function<void(const HubState& next)>;

  static constexpr std::uint16_t defaultPort = 8787;

  /// A hub that watches the permission from now on, but does not listen yet.
  static std::shared_ptr<ServerHub> make(const Dependencies& dependencies, std::uint16_t port = defaultPort);

  ~ServerHub() override;
  ServerHub(const ServerHub&) = delete;
  ServerHub& operator=(const ServerHub&) = delete;

  /// Listens anew: closes every connection and the port first. A failure shows as `lastError`; it is not retried.
  void start();

  /// Closes every connection and the port.
  void stop();

  /// Closes every connection; the port stays open. Threads: any.
  void disconnectAll();

  /// Recomputes `clients`. Threads: any.
  void publishClients() override;

  /// Threads: any.
  bool linger(const SessionID& id) override;

  /// Threads: any.
  void leave(const SessionID& id) override;

  /// Threads: any.
  void setMirroring(bool on) override;

  /// The JSON text that the pairing QR code encodes. Threads: any.
  std::string pairingPayload() const;

  const HubState& state() const { return state_; }
  std::uint16_t port() const { return port_; }

  /// Has `observer` called before each change of the state, with the state to come. Called once.
  void observe(Observer observer);

 private:
  using Sessions = std::unordered_map<SessionID, std::shared_ptr<ClientSession>, boost::hash<SessionID>>;

  struct Live {
    Sessions sessions;
    Sessions lingering;           // their phones have left
    std::uint64_t listening = 0;  // which listener may add to them; 0 is none
  };

  ServerHub(const Dependencies& dependencies, std::uint16_t port);

  void watchPermission();
  void permissionSeen(bool trusted);
  void listen(std::uint64_t listening);
  void listenerChanged(std::uint64_t listening, Listener::State state, const std::error_code& error);
  void adopt(std::uint64_t listening, std::unique_ptr<Transport> transport);
  std::vector<std::shared_ptr<ClientSession>> sessions() const;
  void onMainThread(std::function<void(ServerHub&)> step);
  template <class Change>
  void publish(Change&& change);

  const Dependencies dependencies_;
  const std::uint16_t port_;
  Guarded<Live> live_;
  HubState state_;
  Observer observer_;
  std::unique_ptr<Listener> listener_;
  std::uint64_t starts_ = 0;
  std::optional<bool> lastKnownTrust_;
  std::atomic<bool> publishingClients_ = false;
  std::unique_ptr<RepeatingTimer> permissionWatch_;
};

}  // namespace orvel
