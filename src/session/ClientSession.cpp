#include "session/ClientSession.hpp"

#include "base/UTF8.hpp"
#include "input/EventPoster.hpp"
#include "input/FrameDecoder.hpp"
#include "session/Machine.hpp"
#include "session/PairingStore.hpp"

#include <boost/json/serialize.hpp>
#include <boost/uuid/random_generator.hpp>

#include <utility>

namespace orvel {
namespace {

constexpr int protocolVersion = 1;
constexpr std::size_t largestBacklog = 256 * 1024;
constexpr std::size_t mostPending = 8 * 1024 * 1024;  // bytes, and one message more
constexpr std::size_t fewPending = mostPending / 2;   // when reading goes on
constexpr int pendingAtATime = 256;                   // then others have their turn

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
      phone_(services.keys.addPhone()) {}

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
      .hungUp =
          [self] {
            if (const auto session = self.lock()) session->hungUp();
          },
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
  const bool wasPaused = std::exchange(readingPaused_, isFull());
  if (!readingPaused_) {
    transport_->receive();
  } else if (authenticated_ && !wasPaused) {
    // Nobody would hear the phone release them.
    releaseAll();
  }
}

bool ClientSession::isFull() const {
  if (readsToTheEnd_) return false;
  if (!authenticated_) return backlog_ > largestBacklog;
  return pending_.cost() > (readingPaused_ ? fewPending : mostPending);
}

void ClientSession::hungUp() {
  readsToTheEnd_ = true;
  if (readingPaused_) receiveNext();
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
  if (message->payload.empty()) {
    receiveNext();
    return;
  }
  if (mustWait(*message)) {
    pending_.push(*message);
  } else {
    handle(*message);
  }
  receiveNext();
}

bool ClientSession::mustWait(const Message& message) const {
  // A stranger's is not kept: nothing is read from one who has caused too much.
  if (!authenticated_ || (pending_.empty() && backlog_ <= largestBacklog)) return false;
  return message.type != MessageType::binary || !FrameDecoder::isForPointer(message.payload);
}

void ClientSession::handle(const Message& message) {
  if (message.type == MessageType::binary) {
    handleInput(message.payload);
  } else if (!hasEnded()) {
    handleControl(message.payload);
  }
}

void ClientSession::handlePending() {
  if (pending_.empty() || backlog_ > largestBacklog || hasEnded()) return;
  for (int count = 0; count < pendingAtATime && !pending_.empty() && backlog_ <= largestBacklog; ++count) {
    handle(pending_.pop().message());
  }
  services_.events.flush();
  if (pending_.empty() || backlog_ > largestBacklog || std::exchange(handlesPendingSoon_, true)) return;
  transport_->queue().post([self = weak_from_this()] {
    const auto session = self.lock();
    if (!session) return;
    session->handlesPendingSoon_ = false;
    session->handlePending();
    if (session->readingPaused_) session->receiveNext();
  });
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
  handlePending();
  if (readingPaused_) receiveNext();
}

void ClientSession::cancel() {
  transport_->queue().post([self = shared_from_this()] { self->pending_.clear(); });
  transport_->cancel();
  // The hub may have let go of this session already, and it must live to see its connection end.
  transport_->queue().post([self = shared_from_this()] {});
}

void ClientSession::teardown() {
  *ended_ = true;
  if (authenticated_) {
    releaseAll();
    releaseAfterTexts();
  }
  stopMirror();
  const auto hub = hub_.lock();
  if (!hub || lingers_) return;
  lingers_ = !pending_.empty() && hub->linger(id_);
  if (lingers_) {
    transport_->cancel();
    finishLater();
  } else {
    pending_.clear();
    hub->leave(id_);
  }
}

/// Behind the work that was handed off before. What is to be done keeps the session alive.
void ClientSession::finishLater() {
  work_->post([self = shared_from_this(), &queue = transport_->queue()]() mutable {
    queue.post([self = std::move(self)] { self->finishPending(); });
  });
}

void ClientSession::finishPending() {
  std::size_t cost = 0;
  while (!pending_.empty() && cost <= largestBacklog) {
    const PendingMessages::Item next = pending_.pop();
    cost += taskCost + next.payload.size();
    handle(next.message());
  }
  if (cost > 0) {
    services_.events.flush();
    finishLater();
    return;
  }
  services_.keys.releaseAll(phone_);
  services_.events.flush();
  lingers_ = false;
  if (const auto hub = hub_.lock()) hub->leave(id_);
}

}  // namespace orvel
