#include "catalog/AppCatalog.hpp"
#include "input/CursorSnap.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "input/TrustCheck.hpp"
#include "session/ClientSession.hpp"
#include "session/ControlMessage.hpp"
#include "session/Machine.hpp"
#include "session/PairingStore.hpp"

#include <boost/json/array.hpp>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace orvel {
namespace {

constexpr Seconds denialPause{0.3};
constexpr double iconSize = 56;

boost::json::object appsAnswer(AppCatalog& apps) {
  boost::json::array items;
  for (const AppEntry& entry : apps.snapshot()) items.push_back(entry.json());
  return {{"t", "apps"}, {"items", std::move(items)}};
}

boost::json::object iconsAnswer(AppCatalog& apps, const std::vector<std::string>& ids) {
  boost::json::object items;
  for (const std::string& id : ids) {
    if (const auto icon = apps.icon(id, iconSize)) items[id] = *icon;
  }
  return {{"t", "icons"}, {"items", std::move(items)}};
}

}  // namespace

/// What a phone may ask for.
struct ClientSession::Request {
  std::string_view kind;
  bool needsProof;
  void (*handle)(ClientSession& session, const ControlMessage& message);

  static const Request* of(std::string_view kind);
};

const ClientSession::Request* ClientSession::Request::of(std::string_view kind) {
  using Session = ClientSession;
  using Control = ControlMessage;
  static constexpr std::array requests = {
      Request{"auth", false, [](Session& session, const Control& message) { session.authenticate(message); }},
      Request{"ping", false, [](Session& session, const Control&) { session.pong(); }},
      Request{"mirrorStop", false, [](Session& session, const Control&) { session.stopMirror(); }},
      Request{"mirrorStart", true,
              [](Session& session, const Control& message) {
                session.startMirror(message.width.value_or(900), message.fps.value_or(12),
                                    message.quality.value_or(0.45));
              }},
      Request{"getApps", true, [](Session& session, const Control&) { session.getApps(); }},
      Request{"getIcons", true, [](Session& session, const Control& message) { session.getIcons(message); }},
      Request{"snap", true, [](Session& session, const Control&) { session.services_.snap.settle(); }},
      Request{"reveal", true, [](Session& session, const Control&) { session.reveal(); }},
  };
  const auto* const found = std::ranges::find(requests, kind, &Request::kind);
  return found == requests.end() ? nullptr : found;
}

void ClientSession::handleControl(std::span<const std::uint8_t> data) {
  const auto message = ControlMessage::parse(data);
  if (!message) return;
  const Request* const request = Request::of(message->kind);
  if (request && (authenticated_ || !request->needsProof)) request->handle(*this, *message);
}

void ClientSession::pong() {
  send({{"t", "pong"}});
}

void ClientSession::authenticate(const ControlMessage& message) {
  if (!services_.pairing.verify(message.proof.value_or(""), nonce_)) {
    deny();
    return;
  }
  const std::string device = message.device.value_or("iPhone");
  authenticated_ = true;
  deviceName_.withLock([&](std::string& name) { name = device; });
  remember(device, message.proof.value_or(""));
  if (const auto hub = hub_.lock()) hub->publishClients();
  send({{"t", "ready"}, {"mac", displayName(services_.machine)}, {"accessibility", services_.trust.isTrusted()}});
}

/// Off this thread, for the name may have to be written. By then there may be another token, which this phone has not
/// proved that it knows.
void ClientSession::remember(const std::string& device, const std::string& proof) {
  handOff(
      [&pairing = services_.pairing, nonce = nonce_, device, proof] {
        if (pairing.verify(proof, nonce)) pairing.remember(device);
      },
      taskCost + device.size());
}

void ClientSession::deny() {
  send({{"t", "denied"}, {"reason", "That pairing code does not match this " + services_.machine.kind() + "."}});
  transport_->queue().postAfter(denialPause, [self = weak_from_this()] {
    if (const auto session = self.lock()) session->transport_->cancel();
  });
}

void ClientSession::getApps() {
  answerLater([&apps = services_.apps] { return appsAnswer(apps); }, taskCost);
}

void ClientSession::getIcons(const ControlMessage& request) {
  if (!request.ids) return;
  std::size_t cost = taskCost;
  for (const std::string& id : *request.ids) cost += taskCost + id.size();
  answerLater([&apps = services_.apps, ids = *request.ids] { return iconsAnswer(apps, ids); }, cost);
}

void ClientSession::reveal() {
  if (!services_.permission.cachedTrust()) return;
  handOff(
      [self = weak_from_this(), &pointer = services_.pointer] {
        // Nobody looks for it any more when the phone has left.
        if (!self.expired()) pointer.reveal();
      },
      taskCost);
}

}  // namespace orvel
