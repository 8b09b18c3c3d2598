#pragma once

#include "session/Network.hpp"

#include <boost/asio/basic_stream_socket.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <cstddef>
#include <memory>

namespace orvel {

class NetworkQueue;
class SocketMonitor;

using ConnectionSocket = boost::asio::basic_stream_socket<boost::asio::ip::tcp, boost::asio::io_context::executor_type>;

/// The server's end of a WebSocket (RFC 6455, version 13) over `socket`, which belongs to the context of `queue`.
/// `start` answers the handshake, for which the peer has ten seconds. Pings are answered here. A peer that breaks the
/// protocol or sends a message of more than `maximumMessageSize` bytes gets a close frame with the code for it, and the
/// connection ends. A peer that does not acknowledge what is sent to it is given up as one that has vanished. `queue`
/// and `monitor` must outlive the transport.
std::unique_ptr<Transport> makeWebSocketTransport(NetworkQueue& queue, SocketMonitor& monitor, ConnectionSocket socket,
                                                  std::size_t maximumMessageSize);

}  // namespace orvel
