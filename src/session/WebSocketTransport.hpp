#pragma once

#include "session/Transport.hpp"

#include <boost/asio/basic_stream_socket.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <cstddef>
#include <memory>

namespace orvel {

class NetworkQueue;

using ConnectionSocket = boost::asio::basic_stream_socket<boost::asio::ip::tcp, boost::asio::io_context::executor_type>;

/// The server's end of a WebSocket (RFC 6455, version 13) over `socket`, which belongs to the context of `queue`.
/// `start` answers the handshake, for which the peer has ten seconds. Pings are answered here. A peer that breaks the
/// protocol or sends a message of more than `maximumMessageSize` bytes is told so, and the connection ends.
std::unique_ptr<Transport> makeWebSocketTransport(NetworkQueue& queue, ConnectionSocket socket,
                                                  std::size_t maximumMessageSize);

}  // namespace orvel
