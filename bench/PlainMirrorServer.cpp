#include "bench/PlainMirrorServer.hpp"

#include "base/WorkerThreads.hpp"
#include "mirror/ScreenMirror.hpp"
#include "platform/linux/SystemJPEGEncoder.hpp"
#include "platform/linux/SystemSocketMonitor.hpp"
#include "platform/linux/x11/X11Access.hpp"
#include "platform/linux/x11/X11CaptureService.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "session/ControlMessage.hpp"
#include "session/Network.hpp"
#include "session/NetworkThread.hpp"

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include <stdexcept>
#include <utility>
#include <variant>

namespace orvel::bench {
namespace {

constexpr std::uint8_t frameMarker = 0x80;
constexpr std::size_t largestMessage = 65536;

/// What the system has accepted is taken for having left.
class TrustingMonitor final : public SocketMonitor {
 public:
  bool enableKeepAlive(int socket, Seconds idle) override { return monitor_.enableKeepAlive(socket, idle); }
  Delivery delivery(int socket, Seconds timeout) override { return monitor_.delivery(socket, timeout); }
  bool hasHungUp(int) override { return false; }
  Backlog backlog(int) override { return {}; }

 private:
  SystemSocketMonitor monitor_;
};

std::unique_ptr<X11Connection> connectionTo(const std::string& display) {
  auto connection = X11Connection::open(display);
  if (!connection) throw std::runtime_error("there is no display " + display);
  return connection;
}

}  // namespace

class PlainMirrorServer::Server {
 public:
  Server(const std::string& display, std::uint16_t port)
      : connection_(connectionTo(display)), capture_(*connection_, display) {
    listener_ =
        network_.makeListener({.port = port, .keepAliveIdle = Seconds(10), .maximumMessageSize = largestMessage});
    listener_->start({.stateChanged = [](Listener::State, const std::error_code&) {},
                      .connected = [this](std::unique_ptr<Transport> transport) { take(std::move(transport)); }});
  }

  ~Server() {
    mirror_.setOnFrame(nullptr);
    mirror_.stop();
    if (phone_) phone_->cancel();
    listener_.reset();
    network_.finish();
    workers_.finish();
  }

 private:
  void take(std::unique_ptr<Transport> transport) {
    phone_ = std::move(transport);
    phone_->start({.stateChanged =
                       [this](Transport::State state) {
                         if (state == Transport::State::ready) phone_->receive();
                       },
                   .received = [this](const std::optional<Message>& message) { received(message); },
                   .drained = [] {},
                   .hungUp = {}});
  }

  void received(const std::optional<Message>& message) {
    const auto request = message ? ControlMessage::parse(message->payload) : std::nullopt;
    if (request && request->kind == "mirrorStart") start(*request);
    if (request && request->kind == "ping") answer({{"t", "pong"}});
    if (message) phone_->receive();
  }

  void start(const ControlMessage& request) {
    mirror_.setOnFrame(
        [this](SharedBytes jpeg, Task sent) { phone_->sendFrame(frameMarker, std::move(jpeg), std::move(sent)); });
    mirror_.start(*request.width, *request.fps, *request.quality, [this](const ScreenMirror::Outcome& outcome) {
      const auto& size = std::get<Size>(outcome);
      answer(
          {{"t", "mirrorReady"}, {"width", static_cast<int>(size.width)}, {"height", static_cast<int>(size.height)}});
    });
  }

  void answer(const boost::json::object& json) {
    phone_->send(boost::json::serialize(json), [] {});
  }

  const std::unique_ptr<X11Connection> connection_;
  WorkerThreads workers_;
  const std::unique_ptr<Executor> queue_ = workers_.makeSerialQueue();
  X11CaptureService capture_;
  SystemJPEGEncoder encoder_;
  X11ScreenRecordingAccess access_{*connection_};
  ScreenMirror mirror_{{.access = access_, .capture = capture_, .encoder = encoder_, .queue = *queue_}};
  TrustingMonitor monitor_;
  NetworkThread network_{monitor_};
  std::unique_ptr<Listener> listener_;
  std::unique_ptr<Transport> phone_;
};

PlainMirrorServer::PlainMirrorServer(const std::string& display, std::uint16_t port)
    : server_(std::make_unique<Server>(display, port)) {}

PlainMirrorServer::~PlainMirrorServer() = default;

}  // namespace orvel::bench
