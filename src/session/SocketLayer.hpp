#pragma once

#include "session/WebSocketTransport.hpp"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/bind_handler.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/role.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

namespace orvel {

/// The socket below the WebSocket. Reports when all that had arrived has been read, and bounds the time that a peer may
/// take to close. The names that it is found by are those of the network library.
///
/// Threads: the network thread.
class SocketLayer {
 public:
  using executor_type = ConnectionSocket::executor_type;

  /// How long a peer may take to close the connection once everything has been sent.
  static constexpr std::chrono::seconds closeTimeout{1};

  explicit SocketLayer(ConnectionSocket socket) : socket_(std::move(socket)) {}

  /// Has `drained` called each time before the socket is waited for.
  void onDrained(Task drained) { drained_ = std::move(drained); }

  executor_type get_executor() noexcept { return socket_.get_executor(); }
  ConnectionSocket& socket() { return socket_; }

  void close() {
    boost::system::error_code ignored;
    socket_.close(ignored);
  }

  /// Has `bytes`, which were read too early, read again before all that is still to come.
  void unread(boost::beast::flat_buffer bytes) { early_ = std::move(bytes); }

  template <class Buffers, class Handler>
  void async_read_some(const Buffers& buffers, Handler&& handler) {
    if (early_.size() != 0) {
      const std::size_t count = boost::asio::buffer_copy(buffers, early_.cdata());
      early_.consume(count);
      if (early_.size() == 0) early_ = boost::beast::flat_buffer();
      boost::asio::post(get_executor(), boost::beast::bind_front_handler(std::forward<Handler>(handler),
                                                                         boost::system::error_code(), count));
      return;
    }
    // The WebSocket asks for more only when it has used up what it had.
    if (drained_) drained_();
    socket_.async_read_some(buffers, std::forward<Handler>(handler));
  }

  template <class Buffers, class Handler>
  void async_write_some(const Buffers& buffers, Handler&& handler) {
    socket_.async_write_some(buffers, std::forward<Handler>(handler));
  }

  friend void beast_close_socket(SocketLayer& layer) { layer.close(); }

 private:
  ConnectionSocket socket_;
  boost::beast::flat_buffer early_;
  Task drained_;
};

/// Closes a connection so that what was sent last arrives: sends no more, reads on until the peer ends too or the
/// timeout is reached, and only then closes. Threads: the network thread.
template <class Handler>
class GracefulClose : public std::enable_shared_from_this<GracefulClose<Handler>> {
 public:
  GracefulClose(SocketLayer& layer, Handler handler)
      : layer_(layer), limit_(layer.get_executor(), SocketLayer::closeTimeout), handler_(std::move(handler)) {}

  void begin() {
    boost::system::error_code ignored;
    layer_.socket().shutdown(ConnectionSocket::shutdown_send, ignored);
    limit_.async_wait([self = this->shared_from_this()](const boost::system::error_code& error) {
      if (!error && !self->hasEnded_) self->layer_.close();
    });
    discard();
  }

 private:
  void discard() {
    layer_.socket().async_read_some(
        boost::asio::buffer(scratch_),
        [self = this->shared_from_this()](const boost::system::error_code& error, std::size_t) {
          if (error) {
            self->end();
          } else {
            self->discard();
          }
        });
  }

  void end() {
    hasEnded_ = true;  // the layer may go with the handler
    limit_.cancel();
    layer_.close();
    std::move(handler_)(boost::system::error_code());
  }

  SocketLayer& layer_;
  boost::asio::steady_timer limit_;
  Handler handler_;
  std::array<char, 1024> scratch_;
  bool hasEnded_ = false;
};

/// Found by the WebSocket when it has sent its close frame.
template <class Handler>
void async_teardown(boost::beast::role_type, SocketLayer& layer, Handler&& handler) {
  std::make_shared<GracefulClose<std::decay_t<Handler>>>(layer, std::forward<Handler>(handler))->begin();
}

}  // namespace orvel
