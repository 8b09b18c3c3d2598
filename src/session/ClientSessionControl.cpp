#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "input/TrustCheck.hpp"
#include "session/ClientSession.hpp"
#include "session/Machine.hpp"
#include "session/PairingStore.hpp"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parse.hpp>

#include <string_view>
#include <utility>

namespace orvel {
namespace {

constexpr std::size_t deepestNesting = 512;
constexpr std::size_t handOffCost = 256;
constexpr Seconds denialPause{0.3};

/// A message's value for `key`, or `fallback` when it is missing or no string.
std::string_view stringOr(const boost::json::object& message, std::string_view key, std::string_view fallback) {
  const auto* value = message.if_contains(key);
  const auto* text = value ? value->if_string() : nullptr;
  return text ? std::string_view(*text) : fallback;
}

}  // namespace

void ClientSession::handleControl(std::span<const std::uint8_t> data) {
  boost::json::monotonic_resource memory;
  boost::json::error_code error;
  const boost::json::value parsed = boost::json::parse({reinterpret_cast<const char*>(data.data()), data.size()}, error,
                                                       &memory, {.max_depth = deepestNesting});
  const auto* message = error ? nullptr : parsed.if_object();
  if (!message) return;

  const std::string_view kind = stringOr(*message, "t", "");
  if (kind == "auth") {
    authenticate(*message);
  } else if (kind == "reveal") {
    if (authenticated_) reveal();
  } else if (kind == "ping") {
    send({{"t", "pong"}});
  }
}

void ClientSession::authenticate(const boost::json::object& message) {
  if (!services_.pairing.verify(stringOr(message, "proof", ""), nonce_)) {
    deny();
    return;
  }
  const std::string device(stringOr(message, "device", "iPhone"));
  authenticated_ = true;
  deviceName_.withLock([&](std::string& name) { name = device; });
  services_.pairing.remember(device);
  if (const auto hub = hub_.lock()) hub->publishClients();
  send({{"t", "ready"}, {"mac", displayName(services_.machine)}, {"accessibility", services_.trust.isTrusted()}});
}

void ClientSession::deny() {
  send({{"t", "denied"}, {"reason", "That pairing code does not match this Mac."}});
  transport_->queue().postAfter(denialPause, [self = weak_from_this()] {
    if (const auto session = self.lock()) session->transport_->cancel();
  });
}

void ClientSession::reveal() {
  if (!services_.permission.cachedTrust()) return;
  handOff([&pointer = services_.pointer] { pointer.reveal(); }, handOffCost);
}

}  // namespace orvel
