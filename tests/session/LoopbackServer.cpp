#include "session/LoopbackServer.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <future>
#include <optional>
#include <utility>

namespace orvel {
namespace {

constexpr int portAttempts = 5;

/// A port that was free a moment ago.
std::uint16_t freePort() {
  const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_ANY);
  socklen_t size = sizeof(address);
  ::bind(socket, reinterpret_cast<const sockaddr*>(&address), size);
  ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  ::close(socket);
  return ntohs(address.sin_port);
}

}  // namespace

/// Reads one connection for as long as it lasts.
class LoopbackServer::Peer : public std::enable_shared_from_this<Peer> {
 public:
  Peer(LoopbackServer& server, std::size_t index, std::unique_ptr<Transport> transport)
      : server_(server), index_(index), transport_(std::move(transport)) {}

  void start() {
    transport_->start({.stateChanged =
                           [weak = weak_from_this()](Transport::State state) {
                             if (const auto self = weak.lock()) self->stateChanged(state);
                           },
                       .received =
                           [weak = weak_from_this()](std::optional<Message> message) {
                             if (const auto self = weak.lock()) self->received(message);
                           },
                       .drained = [] {},
                       .hungUp =
                           [weak = weak_from_this()] {
                             if (const auto self = weak.lock()) self->hungUp();
                           }});
  }

  void send(std::string text) {
    transport_->send(std::move(text), [&server = server_, index = index_] {
      server.note(index, [](ConnectionRecord& record) { ++record.sendsDone; });
    });
  }

  void sendFrame(std::uint8_t marker, const std::string& image) {
    const auto bytes = std::make_shared<const std::string>(image);
    const SharedBytes shared{{bytes, reinterpret_cast<const std::uint8_t*>(bytes->data())}, bytes->size()};
    transport_->sendFrame(marker, shared, [&server = server_, index = index_] {
      server.note(index, [](ConnectionRecord& record) { ++record.framesTaken; });
    });
  }

  void dropFrames() {
    transport_->queue().post([self = shared_from_this()] { self->transport_->dropFrames(); });
  }

  void pause(bool paused) {
    transport_->queue().post([self = shared_from_this(), paused] {
      self->paused_ = paused;
      if (!paused && std::exchange(self->owesReceive_, false)) self->transport_->receive();
    });
  }

  void cancel() {
    transport_->cancel();
    transport_->queue().post([self = shared_from_this()] {});
  }

 private:
  void stateChanged(Transport::State state) {
    server_.note(index_, [&](ConnectionRecord& record) { record.states.push_back(state); });
    if (state == Transport::State::ready) {
      transport_->receive();
    } else {
      server_.letGo(index_);
    }
  }

  void received(std::optional<Message> message) {
    if (!message) {
      server_.note(index_, [](ConnectionRecord& record) { record.failedToReceive = true; });
      server_.letGo(index_);
      return;
    }
    server_.note(index_, [&](ConnectionRecord& record) {
      record.messages.push_back({message->type, {message->payload.begin(), message->payload.end()}});
    });
    if (message->type == MessageType::close) {
      transport_->cancel();
    } else if (paused_) {
      owesReceive_ = true;
    } else {
      transport_->receive();
    }
  }

  void hungUp() {
    server_.note(index_, [](ConnectionRecord& record) { record.hungUp = true; });
  }

  LoopbackServer& server_;
  const std::size_t index_;
  const std::unique_ptr<Transport> transport_;
  bool paused_ = false;
  bool owesReceive_ = false;
};

bool ConnectionRecord::has(Transport::State state) const {
  return std::ranges::count(states, state) > 0;
}

bool ConnectionRecord::ended() const {
  return failedToReceive || has(Transport::State::failed) || has(Transport::State::cancelled);
}

LoopbackServer::LoopbackServer() {
  for (int attempt = 0; attempt < portAttempts && port_ == 0; ++attempt) {
    const std::uint16_t port = freePort();
    if (listen(port)) port_ = port;
  }
}

LoopbackServer::~LoopbackServer() {
  listener_.reset();
  const auto peers = [this] {
    const std::lock_guard lock(mutex_);
    return peers_;
  }();
  for (const auto& peer : peers) {
    if (peer) peer->cancel();
  }
  network_.finish();
}

bool LoopbackServer::listen(std::uint16_t port) {
  auto opened = std::make_shared<std::promise<bool>>();
  auto answer = opened->get_future();
  listener_ = network_.makeListener(
      {.port = port, .keepAliveIdle = std::chrono::seconds(10), .maximumMessageSize = largestMessage});
  listener_->start({.stateChanged =
                        [opened](Listener::State state, const std::error_code&) {
                          if (state != Listener::State::cancelled) opened->set_value(state == Listener::State::ready);
                        },
                    .connected = [this](std::unique_ptr<Transport> transport) { take(std::move(transport)); }});
  return answer.get();
}

void LoopbackServer::take(std::unique_ptr<Transport> transport) {
  std::shared_ptr<Peer> peer;
  {
    const std::lock_guard lock(mutex_);
    peer = std::make_shared<Peer>(*this, records_.size(), std::move(transport));
    records_.emplace_back();
    peers_.push_back(peer);
  }
  peer->start();
}

ConnectionRecord LoopbackServer::connection(std::size_t index) const {
  const std::lock_guard lock(mutex_);
  return index < records_.size() ? records_[index] : ConnectionRecord{};
}

bool LoopbackServer::waitFor(std::size_t index, const std::function<bool(const ConnectionRecord&)>& isAsExpected,
                             std::chrono::milliseconds limit) const {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, limit, [&] { return index < records_.size() && isAsExpected(records_[index]); });
}

void LoopbackServer::send(std::size_t index, std::string text) {
  if (const auto found = peer(index)) found->send(std::move(text));
}

void LoopbackServer::sendFrame(std::size_t index, std::uint8_t marker, const std::string& image) {
  if (const auto found = peer(index)) found->sendFrame(marker, image);
}

void LoopbackServer::dropFrames(std::size_t index) {
  if (const auto found = peer(index)) found->dropFrames();
}

void LoopbackServer::pause(std::size_t index, bool paused) {
  if (const auto found = peer(index)) found->pause(paused);
}

void LoopbackServer::cancel(std::size_t index) {
  if (const auto found = peer(index)) found->cancel();
}

void LoopbackServer::note(std::size_t index, const std::function<void(ConnectionRecord&)>& change) {
  const std::lock_guard lock(mutex_);
  change(records_[index]);
  changed_.notify_all();
}

void LoopbackServer::letGo(std::size_t index) {
  // The last reference goes outside the lock, on the connection's own queue.
  const auto gone = [&] {
    const std::lock_guard lock(mutex_);
    return std::exchange(peers_[index], nullptr);
  }();
}

std::shared_ptr<LoopbackServer::Peer> LoopbackServer::peer(std::size_t index) const {
  const std::lock_guard lock(mutex_);
  return index < peers_.size() ? peers_[index] : nullptr;
}

}  // namespace orvel
