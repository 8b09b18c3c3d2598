#include "session/WebSocketListener.hpp"

#include "session/NetworkQueue.hpp"
#include "session/SocketMonitor.hpp"
#include "session/WebSocketTransport.hpp"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/steady_timer.hpp>

#include <utility>

namespace orvel {
namespace {

using boost::asio::ip::tcp;
using Error = boost::system::error_code;

/// How long to leave waiting connections alone when one could not be taken, as when no descriptor is free.
constexpr Seconds acceptPause{0.1};

}  // namespace

class WebSocketListener::Port : public std::enable_shared_from_this<Port> {
 public:
  Port(NetworkQueue& queue, SocketMonitor& monitor, const ListenerOptions& options)
      : queue_(queue), monitor_(monitor), options_(options), acceptor_(queue.context()) {}

  void start(Handlers handlers) {
    if (closed_) return;
    handlers_ = std::move(handlers);
    if (const Error error = open()) {
      closed_ = true;
      handlers_.stateChanged(State::failed, error);
      return;
    }
    handlers_.stateChanged(State::ready, {});
    accept();
  }

  void close() {
    if (std::exchange(closed_, true)) return;
    Error ignored;
    acceptor_.close(ignored);
    if (handlers_.stateChanged) handlers_.stateChanged(State::cancelled, {});
  }

 private:
  Error open() {
    const Error error = open(tcp::v6());
    const bool noIPv6 = error == boost::asio::error::address_family_not_supported ||
                        error == boost::system::errc::address_not_available;
    return noIPv6 ? open(tcp::v4()) : error;
  }

  Error open(const tcp& protocol) {
    Error error;
    acceptor_.close(error);
    acceptor_.open(protocol, error);
    if (!error && protocol == tcp::v6()) acceptor_.set_option(boost::asio::ip::v6_only(false), error);
    // Lets a restart take the port while old connections fade; it does not let two programs listen.
    if (!error) acceptor_.set_option(tcp::acceptor::reuse_address(true), error);
    if (!error) acceptor_.bind(tcp::endpoint(protocol, options_.port), error);
    if (!error) acceptor_.listen(tcp::acceptor::max_listen_connections, error);
    return error;
  }

  void accept() {
    acceptor_.async_accept([self = shared_from_this()](const Error& error, ConnectionSocket socket) {
      self->accepted(error, std::move(socket));
    });
  }

  void accepted(const Error& error, ConnectionSocket socket) {
    if (closed_) return;
    if (error) {
      queue_.postAfter(acceptPause, [self = shared_from_this()] {
        if (!self->closed_) self->accept();
      });
      return;
    }
    Error ignored;
    socket.set_option(tcp::no_delay(true), ignored);
    monitor_.enableKeepAlive(socket.native_handle(), options_.keepAliveIdle);
    handlers_.connected(makeWebSocketTransport(queue_, monitor_, std::move(socket), options_.maximumMessageSize));
    accept();
  }

  NetworkQueue& queue_;
  SocketMonitor& monitor_;
  const ListenerOptions options_;
  boost::asio::basic_socket_acceptor<tcp, boost::asio::io_context::executor_type> acceptor_;
  Handlers handlers_;
  bool closed_ = false;
};

WebSocketListener::WebSocketListener(NetworkQueue& queue, SocketMonitor& monitor, const ListenerOptions& options)
    : port_(std::make_shared<Port>(queue, monitor, options)), queue_(queue) {}

// Only memory that has run out could be thrown here, and nothing could go on then.
WebSocketListener::~WebSocketListener() {  // NOLINT(bugprone-exception-escape)
  cancel();
}

void WebSocketListener::start(Handlers handlers) {
  queue_.post([port = port_, handlers = std::move(handlers)]() mutable { port->start(std::move(handlers)); });
}

void WebSocketListener::cancel() {
  queue_.post([port = port_] { port->close(); });
}

}  // namespace orvel
