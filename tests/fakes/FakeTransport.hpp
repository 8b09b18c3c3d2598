#pragma once

#include "fakes/FakeClock.hpp"
#include "session/Network.hpp"

#include <boost/json/parse.hpp>

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvel {

/// Both ends of a connection in memory: the host's is a `FakeTransport`, the phone's is this.
///
/// Messages arrive one after another as the host asks for them; what the host sends is taken at once unless `stalled`.
class FakeWire {
 public:
  struct Arrival {
    MessageType type;
    std::string payload;
  };

  explicit FakeWire(FakeClock& clock) : queue(clock) {}

  /// The connection is up.
  void open() {
    if (handlers.stateChanged && !cancelled) handlers.stateChanged(Transport::State::ready);
  }

  void fail() { handlers.stateChanged(Transport::State::failed); }

  void text(std::string_view json) { arrive(MessageType::text, std::string(json)); }
  void binary(std::vector<std::uint8_t> frame) { arrive(MessageType::binary, std::string(frame.begin(), frame.end())); }
  void arrive(MessageType type, std::string payload) {
    incoming.push_back({type, std::move(payload)});
    deliver();
  }

  /// The connection breaks without a word.
  void drop() {
    broken = true;
    deliver();
  }

  /// The phone has ended its side while it was not read from; what it had sent before still arrives, then the end.
  void hangUp() {
    broken = true;
    if (!asked) handlers.hungUp();
    deliver();
  }

  /// Takes what waits to be sent, as a phone that reads again.
  void unstall() {
    stalled = false;
    for (const Task& taken : std::exchange(unsent, {})) taken();
  }

  /// The JSON messages that the phone has received, of one kind or all.
  std::vector<boost::json::object> received(std::string_view kind = "") const {
    std::vector<boost::json::object> messages;
    for (const std::string& message : sent) {
      auto json = boost::json::parse(message).as_object();
      if (kind.empty() || json.at("t").as_string() == kind) messages.push_back(std::move(json));
    }
    return messages;
  }

  void deliver() {
    if (delivering) return;
    delivering = true;
    bool handedOver = false;
    while (asked && !cancelled && (broken || !incoming.empty())) {
      asked = false;
      handedOver = true;
      if (incoming.empty()) {
        handlers.received(std::nullopt);
      } else {
        const Arrival message = std::move(incoming.front());
        incoming.pop_front();
        handlers.received(Message{
            message.type, {reinterpret_cast<const std::uint8_t*>(message.payload.data()), message.payload.size()}});
      }
    }
    delivering = false;
    if (handedOver && handlers.drained) handlers.drained();
  }

  struct Frame {
    std::uint8_t marker;
    std::string image;
  };

  FakeExecutor queue;
  Transport::Handlers handlers;
  std::deque<Arrival> incoming;
  std::vector<std::string> sent;
  std::vector<Frame> frames;
  int drops = 0;  ///< How often frames that wait were dropped.
  std::vector<Task> unsent;
  bool stalled = false;
  bool asked = false;
  bool broken = false;
  bool cancelled = false;
  bool closed = false;  ///< The transport itself is gone.
  bool delivering = false;
};

class FakeTransport final : public Transport {
 public:
  explicit FakeTransport(std::shared_ptr<FakeWire> wire) : wire_(std::move(wire)) {}
  ~FakeTransport() override { wire_->closed = true; }

  Executor& queue() override { return wire_->queue; }
  void start(Handlers handlers) override { wire_->handlers = std::move(handlers); }
  void receive() override {
    wire_->asked = true;
    wire_->deliver();
  }

  void send(std::string text, Task sent) override {
    wire_->sent.push_back(std::move(text));
    if (wire_->stalled) {
      wire_->unsent.push_back(std::move(sent));
    } else {
      wire_->queue.post(std::move(sent));
    }
  }

  void sendFrame(std::uint8_t marker, SharedBytes image, Task taken) override {
    wire_->frames.push_back({marker, std::string(image.data.get(), image.data.get() + image.size)});
    if (wire_->stalled) {
      wire_->unsent.push_back(std::move(taken));
    } else {
      wire_->queue.post(std::move(taken));
    }
  }

  void dropFrames() override { ++wire_->drops; }

  void cancel() override {
    wire_->queue.post([wire = wire_] {
      if (std::exchange(wire->cancelled, true)) return;
      if (wire->handlers.stateChanged) wire->handlers.stateChanged(State::cancelled);
    });
  }

 private:
  const std::shared_ptr<FakeWire> wire_;
};

/// A network whose phones a test connects by hand. A port that a test marks as taken cannot be opened.
class FakeNetwork final : public Network {
 public:
  struct Port {
    ListenerOptions options;
    Listener::Handlers handlers;
    bool open = false;
  };

  explicit FakeNetwork(FakeClock& clock) : clock_(clock), queue_(clock) {}

  std::unique_ptr<Listener> makeListener(const ListenerOptions& options) override {
    ports.push_back(std::make_shared<Port>(Port{options, {}, false}));
    return std::make_unique<FakeListener>(*this, ports.back());
  }

  /// A phone connects to the newest listener; its handshake is still to come.
  std::shared_ptr<FakeWire> connect() { return connectTo(*ports.back()); }

  std::shared_ptr<FakeWire> connectTo(const Port& port) {
    auto wire = std::make_shared<FakeWire>(clock_);
    port.handlers.connected(std::make_unique<FakeTransport>(wire));
    return wire;
  }

  std::vector<std::shared_ptr<Port>> ports;
  std::optional<std::error_code> failure;  ///< Why ports cannot be opened.

 private:
  class FakeListener final : public Listener {
   public:
    FakeListener(FakeNetwork& network, std::shared_ptr<Port> port) : network_(network), port_(std::move(port)) {}
    ~FakeListener() override { cancel(); }

    void start(Handlers handlers) override {
      port_->handlers = std::move(handlers);
      network_.queue_.post([port = port_, failure = network_.failure] {
        port->open = !failure;
        port->handlers.stateChanged(failure ? State::failed : State::ready, failure.value_or(std::error_code()));
      });
    }

    void cancel() override {
      network_.queue_.post([port = port_] {
        if (std::exchange(port->open, false)) port->handlers.stateChanged(State::cancelled, {});
      });
    }

   private:
    FakeNetwork& network_;
    const std::shared_ptr<Port> port_;
  };

  FakeClock& clock_;
  FakeExecutor queue_;
};

}  // namespace orvel
