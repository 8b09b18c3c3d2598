#include "session/ClientSession.hpp"

#include "base/UTF8.hpp"
#include "input/EventPoster.hpp"
#include "input/PointerDriver.hpp"
#include "session/Machine.hpp"
#include "session/PairingStore.hpp"

#include <boost/json/serialize.hpp>
#include <boost/uuid/random_generator.hpp>

#include <utility>

namespace orvel {
namespace {

constexpr int protocolVersion = 1;
constexpr std::size_t largestBacklog = 256 * 1024;

}  // namespace

ClientSession::ClientSession(std::unique_ptr<Transport> transport, std::weak_ptr<SessionHub> hub,
                             const SessionServices& services)
    : id_(boost::uuids::random_generator_pure()()),
      transport_(std::move(transport)),
      hub_(std::move(hub)),
      services_(services),
      work_(services.queues.makeSerialQueue()),
      nonce_(services.pairing.randomNonce()),
      deviceName_("iPhone"),
      heldKeys_(services.events) {}

ClientSession::~ClientSession() = default;

std::string ClientSession::deviceName() const {
  return deviceName_.withLock([](const std::string& name) { return name; });
}

void ClientSession::start() {
  const auto self = weak_from_this();
  transport_->start({
      .stateChanged =
          [self](Transport::State state) {
            if (const auto session = self.lock()) session->stateChanged(state);
          },
      .received =
          [self](std::optional<Message> message) {
            if (const auto session = self.lock()) session->received(message);
          },
      .drained = [&events = services_.events] { events.flush(); },
  });
}

void ClientSession::stateChanged(Transport::State state) {
  switch (state) {
    case Transport::State::ready:
      sendHello();
      receiveNext();
      break;
    case Transport::State::failed:
    case Transport::State::cancelled:
      teardown();
      break;
  }
}

void ClientSession::sendHello() {
  send({{"t", "hello"}, {"mac", displayName(services_.machine)}, {"version", protocolVersion}, {"nonce", nonce_}});
}

void ClientSession::receiveNext() {
  readingPaused_ = backlog_ > largestBacklog;
  if (!readingPaused_) transport_->receive();
}

void ClientSession::received(std::optional<Message> message) {
  if (!message) {
    teardown();
    return;
  }
  if (message->type == MessageType::close) {
    transport_->cancel();
    return;
  }
  if (!message->payload.empty()) {
    if (message->type == MessageType::text) handleControl(message->payload);
    if (message->type == MessageType::binary) handleInput(message->payload);
  }
  receiveNext();
}

void ClientSession::send(const boost::json::object& json) {
  sendText(boost::json::serialize(json));
}

void ClientSession::sendText(std::string json) {
  if (!isValidUTF8(json)) return;
  const std::size_t cost = json.size();
  backlog_ += cost;
  transport_->send(std::move(json), [self = weak_from_this(), cost] {
    if (const auto session = self.lock()) session->settle(cost);
  });
}

void ClientSession::handOff(Task task, std::size_t cost) {
  backlog_ += cost;
  work_->post([self = weak_from_this(), &queue = transport_->queue(), task = std::move(task), cost] {
    task();
    queue.post([self, cost] {
      if (const auto session = self.lock()) session->settle(cost);
    });
  });
}

void ClientSession::answerLater(std::function<boost::json::object()> compose, std::size_t cost) {
  // Sent from the session's own queue, on which the session may also end: the work must not be what keeps it alive.
  handOff(
      [self = weak_from_this(), &queue = transport_->queue(), compose = std::move(compose)] {
        queue.post([self, json = boost::json::serialize(compose())]() mutable {
          if (const auto session = self.lock()) session->sendText(std::move(json));
        });
      },
      cost);
}

void ClientSession::settle(std::size_t cost) {
  backlog_ -= cost;
  if (readingPaused_) receiveNext();
}

void ClientSession::cancel() {
  transport_->cancel();
  // The hub may have let go of this session already, and it must live to see its connection end.
  transport_->queue().post([self = shared_from_this()] {});
}

void ClientSession::teardown() {
  if (authenticated_) {
    services_.pointer.releaseAll();
    heldKeys_.releaseAll();
    services_.events.flush();
  }
  stopMirror();
  hasEnded_ = true;
  if (const auto hub = hub_.lock()) hub->leave(id_);
}

}  // namespace orvel
