#include "input/TrustCheck.hpp"
#include "session/ClientSession.hpp"
#include "session/ControlMessage.hpp"
#include "session/Machine.hpp"
#include "session/PairingStore.hpp"

#include <string>

namespace orvel {
namespace {

constexpr Seconds denialPause{0.3};

}  // namespace

void ClientSession::handleControl(std::span<const std::uint8_t> data) {
  const auto message = ControlMessage::parse(data);
  if (!message) return;
  if (message->kind == "auth") {
    authenticate(*message);
  } else if (message->kind == "ping") {
    send({{"t", "pong"}});
  } else if (message->kind == "mirrorStop") {
    stopMirror();
  } else if (authenticated_) {
    serve(*message);
  }
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

}  // namespace orvel
