#include "session/WebSocketTransport.hpp"

#include "base/UTF8.hpp"
#include "session/FrameLane.hpp"
#include "session/NetworkQueue.hpp"
#include "session/SocketLayer.hpp"
#include "session/SocketMonitor.hpp"

#include <boost/asio/buffer.hpp>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <array>
#include <chrono>
#include <list>
#include <memory>
#include <string_view>
#include <utility>

namespace orvel {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace websocket = boost::beast::websocket;

using Error = boost::system::error_code;

constexpr std::chrono::seconds handshakeTimeout{10};
constexpr std::chrono::seconds deliveryCheck{3};
constexpr Seconds hangUpCheck{0.25};
constexpr int looksAtOwedPong = 2;  // that may be on its way
constexpr Seconds deliveryTimeout{14};
constexpr std::size_t largestRequest = 32 * 1024;  // a browser sends the cookies of this address along
constexpr std::size_t largestKeptBuffer = 64 * 1024;

/// The peer's request for a WebSocket, which must be whole within the limit.
struct Opening {
  explicit Opening(SocketLayer& layer) : limit(layer.get_executor(), handshakeTimeout) {
    parser.header_limit(largestRequest);
  }

  /// The request. One whose key is not 16 bytes in base64 comes without it, so that the WebSocket, which does not look
  /// that closely, refuses it.
  http::request<http::empty_body> request() {
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    auto request = parser.release();
    const auto key = request[http::field::sec_websocket_key];
    const bool isWhole = key.size() == 24 && key.find_first_not_of(digits) == 22 && key.ends_with("==");
    if (!isWhole) request.erase(http::field::sec_websocket_key);
    return request;
  }

  asio::steady_timer limit;
  beast::flat_buffer received{2 * largestRequest};
  http::request_parser<http::empty_body> parser;
};

/// One connection. Everything runs on the network thread; pending operations keep it alive.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(NetworkQueue& queue, SocketMonitor& monitor, ConnectionSocket socket, std::size_t maximumMessageSize)
      : queue_(queue), monitor_(monitor), stream_(std::move(socket)), timer_(stream_.get_executor()) {
    stream_.set_option(websocket::stream_base::timeout{.handshake_timeout = handshakeTimeout,
                                                       .idle_timeout = websocket::stream_base::none(),
                                                       .keep_alive_pings = false});
    stream_.auto_fragment(false);
    stream_.read_message_max(maximumMessageSize);
    stream_.set_option(websocket::stream_base::decorator(
        [](websocket::response_type& response) { response.set(http::field::server, "Orvel"); }));
    stream_.control_callback([this](websocket::frame_type kind, beast::string_view) {
      if (kind == websocket::frame_type::close) peerLeft();
      if (kind == websocket::frame_type::ping) owePong();
    });
  }

  void start(Transport::Handlers handlers) {
    handlers_ = std::move(handlers);
    if (ended_) {
      handlers_.stateChanged(Transport::State::cancelled);
      return;
    }
    stream_.next_layer().onDrained([this] {
      pongIsOwed_ = false;
      handlers_.drained();
    });
    readRequest();
  }

  void receive() {
    asked_ = true;
    if (!delivering_) listen();
  }

  void send(std::string text, Task sent) {
    outgoing_.push_back({std::move(text), std::move(sent)});
    write();
  }

  void sendFrame(FrameLane::Frame frame) {
    if (!frames_) {
      // Few phones watch; the others need not carry it.
      frames_ = std::make_unique<FrameLane>(
          queue_, [this] { return monitor_.backlog(nativeSocket()); }, [this] { write(); });
      if (ended_) frames_->end();
    }
    frames_->add(std::move(frame));
  }

  void dropFrames() {
    if (frames_) frames_->clear();
  }

  void cancel() {
    if (std::exchange(ended_, true)) return;
    timer_.cancel();
    if (frames_) frames_->end();
    if (closing_) {
      closeLater();
    } else {
      stream_.next_layer().close();
    }
    if (handlers_.stateChanged) handlers_.stateChanged(Transport::State::cancelled);
  }

 private:
  struct Outgoing {
    std::string text;
    Task sent;
  };

  void readRequest() {
    const auto opening = std::make_shared<Opening>(stream_.next_layer());
    opening->limit.async_wait([self = weak_from_this()](const Error& error) {
      const auto connection = self.lock();
      if (connection && !error) connection->stream_.next_layer().close();
    });
    http::async_read_header(stream_.next_layer(), opening->received, opening->parser,
                            [self = shared_from_this(), opening](const Error& error, std::size_t) {
                              opening->limit.cancel();
                              self->requested(error, *opening);
                            });
  }

  void requested(const Error& error, Opening& opening) {
    if (ended_) return;
    if (error) {
      handlers_.stateChanged(Transport::State::failed);
      return;
    }
    if (opening.received.size() != 0) stream_.next_layer().unread(std::move(opening.received));
    const auto request = std::make_shared<const http::request<http::empty_body>>(opening.request());
    stream_.async_accept(*request, [self = shared_from_this(), request](const Error& refused) {
      if (!self->ended_) self->handlers_.stateChanged(refused ? Transport::State::failed : Transport::State::ready);
    });
  }

  /// The WebSocket reads on only when it has written the pong, which has to wait for what is being written.
  void owePong() {
    watchDelivery();
    pongIsOwed_ = true;
    looksForPong_ = 0;
    watchForHangUp();
  }

  void peerLeft() {
    closing_ = true;
    if (!ended_) handlers_.received(Message{.type = MessageType::close, .payload = {}});
  }

  /// Gives a close frame, which an operation of the WebSocket is sending, time to arrive.
  void closeLater() {
    timer_.expires_after(SocketLayer::closeTimeout);
    timer_.async_wait([self = weak_from_this()](const Error& error) {
      const auto connection = self.lock();
      if (connection && !error) connection->stream_.next_layer().close();
    });
  }

  /// Ends the connection for a text that is none. What the WebSocket checks on the way lets a character pass that is
  /// cut off before an empty last fragment.
  void refuseText() {
    closing_ = true;
    stream_.async_close(websocket::close_code::bad_payload, [self = shared_from_this()](const Error&) {});
    handlers_.received(std::nullopt);
  }

  void listen() {
    if (ended_ || !std::exchange(asked_, false)) return;
    reading_ = true;
    stream_.async_read(incoming_, [self = shared_from_this()](const Error& error, std::size_t) { self->read(error); });
  }

  void read(const Error& error) {
    reading_ = false;
    pongIsOwed_ = false;
    if (ended_ || closing_) return;
    if (error) {
      handlers_.received(std::nullopt);
      return;
    }
    const auto payload = incoming_.cdata();
    if (stream_.got_text() && !isValidUTF8({static_cast<const char*>(payload.data()), payload.size()})) {
      refuseText();
      return;
    }
    delivering_ = true;
    handlers_.received(Message{.type = stream_.got_text() ? MessageType::text : MessageType::binary,
                               .payload = {static_cast<const std::uint8_t*>(payload.data()), payload.size()}});
    delivering_ = false;
    incoming_.consume(payload.size());
    if (incoming_.capacity() > largestKeptBuffer) incoming_ = beast::flat_buffer();
    if (asked_) {
      listen();
    } else {
      watchForHangUp();
    }
  }

  /// While nothing is read, as while a pong cannot be written, the end of the peer lies behind what it has sent and is
  /// looked for.
  void watchForHangUp() {
    if (std::exchange(watchingForHangUp_, true)) return;
    queue_.postAfter(hangUpCheck, [self = weak_from_this()] {
      const auto connection = self.lock();
      if (!connection) return;
      connection->watchingForHangUp_ = false;
      connection->checkForHangUp();
    });
  }

  void checkForHangUp() {
    if (ended_ || closing_ || (reading_ && !pongIsOwed_)) return;
    const bool hasHungUp = monitor_.hasHungUp(nativeSocket());
    if (!reading_) {
      if (hasHungUp) {
        if (handlers_.hungUp) handlers_.hungUp();
        return;
      }
      probe();
    } else if (++looksForPong_ > looksAtOwedPong && hasHungUp) {
      // What lies behind the ping cannot be read before the pong is written, which may be never.
      handlers_.received(std::nullopt);
      return;
    }
    watchForHangUp();
  }

  /// The system of a peer that is gone, but has more to send than we have room for, keeps that from us. To data it
  /// answers by a reset.
  void probe() {
    if (writing_ || std::exchange(probing_, true)) return;
    watchDelivery();
    stream_.async_ping({}, [self = shared_from_this()](const Error&) { self->probing_ = false; });
  }

  /// Writes what is to go next, unless something is being written. Whatever waits goes before a frame.
  void write() {
    if (writing_) return;
    const bool hasMessage = !outgoing_.empty();
    if (!hasMessage && !(frames_ && frames_->hasNext())) return;
    writing_ = true;
    watchDelivery();
    if (hasMessage) {
      writeMessage();
    } else {
      writeFrame();
    }
  }

  void writeMessage() {
    stream_.text(true);
    stream_.async_write(asio::buffer(outgoing_.front().text), [self = shared_from_this()](const Error&, std::size_t) {
      self->writing_ = false;
      const Task sent = std::move(self->outgoing_.front().sent);
      self->outgoing_.pop_front();
      self->write();
      sent();
    });
  }

  void writeFrame() {
    writtenFrame_ = frames_->takeNext();
    stream_.text(false);
    const SharedBytes& image = writtenFrame_.image;
    const std::array<asio::const_buffer, 2> message{asio::buffer(&writtenFrame_.marker, 1),
                                                    asio::buffer(image.data.get(), image.size)};
    stream_.async_write(message, [self = shared_from_this()](const Error& error, std::size_t) {
      self->writing_ = false;
      self->writtenFrame_ = {};
      if (error) {
        self->frames_->end();
      } else {
        self->frames_->accepted();
      }
      self->write();
    });
  }

  /// Looks from time to time what becomes of what is sent, until it has arrived.
  void watchDelivery() {
    if (ended_ || std::exchange(watchingDelivery_, true)) return;
    timer_.expires_after(deliveryCheck);
    timer_.async_wait([self = weak_from_this()](const Error& error) {
      const auto connection = self.lock();
      if (connection && !error) connection->checkDelivery();
    });
  }

  void checkDelivery() {
    watchingDelivery_ = false;
    const Delivery delivery = monitor_.delivery(nativeSocket(), deliveryTimeout);
    if (delivery == Delivery::ignored) {
      stream_.next_layer().close();
    } else if (delivery == Delivery::pending || writing_) {
      watchDelivery();
    }
  }

  int nativeSocket() { return stream_.next_layer().socket().native_handle(); }

  NetworkQueue& queue_;
  SocketMonitor& monitor_;
  websocket::stream<SocketLayer, false> stream_;
  asio::steady_timer timer_;  // of the next look at the delivery; of the close once the connection has ended
  beast::flat_buffer incoming_;
  std::list<Outgoing> outgoing_;  // a list holds no memory while it is empty
  std::unique_ptr<FrameLane> frames_;
  FrameLane::Frame writtenFrame_;  // the one that is being written
  Transport::Handlers handlers_;
  bool asked_ = false;       // for a message
  bool delivering_ = false;  // one, which still stands in `incoming_`
  bool closing_ = false;     // a close frame is on its way, and the end comes in its own time
  bool ended_ = false;
  bool reading_ = false;
  bool writing_ = false;
  bool probing_ = false;
  bool pongIsOwed_ = false;
  int looksForPong_ = 0;  // whether the peer has ended, since a pong is owed
  bool watchingForHangUp_ = false;
  bool watchingDelivery_ = false;
};

class WebSocketTransport final : public Transport {
 public:
  WebSocketTransport(NetworkQueue& queue, std::shared_ptr<Connection> connection)
      : queue_(queue), connection_(std::move(connection)) {}

  // Only memory that has run out could be thrown here, and nothing could go on then.
  ~WebSocketTransport() override { cancel(); }  // NOLINT(bugprone-exception-escape)

  Executor& queue() override { return queue_; }

  void start(Handlers handlers) override {
    asio::dispatch(queue_.context(), [connection = connection_, handlers = std::move(handlers)]() mutable {
      connection->start(std::move(handlers));
    });
  }

  void receive() override { connection_->receive(); }

  void send(std::string text, Task sent) override {
    asio::dispatch(queue_.context(), [here = connection_, text = std::move(text), sent = std::move(sent)]() mutable {
      here->send(std::move(text), std::move(sent));
    });
  }

  void sendFrame(std::uint8_t marker, SharedBytes image, Task taken) override {
    asio::dispatch(queue_.context(),
                   [connection = connection_, marker, image = std::move(image), taken = std::move(taken)]() mutable {
                     connection->sendFrame({marker, std::move(image), std::move(taken)});
                   });
  }

  void dropFrames() override { connection_->dropFrames(); }

  void cancel() override {
    queue_.post([connection = connection_] { connection->cancel(); });
  }

 private:
  NetworkQueue& queue_;
  const std::shared_ptr<Connection> connection_;
};

}  // namespace

std::unique_ptr<Transport> makeWebSocketTransport(NetworkQueue& queue, SocketMonitor& monitor, ConnectionSocket socket,
                                                  std::size_t maximumMessageSize) {
  auto connection = std::make_shared<Connection>(queue, monitor, std::move(socket), maximumMessageSize);
  return std::make_unique<WebSocketTransport>(queue, std::move(connection));
}

}  // namespace orvel
