#include "tools/ScriptedHost.hpp"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket.hpp>
#include <sys/socket.h>

#include <utility>

namespace orvel::phone {
namespace {

namespace asio = boost::asio;
namespace websocket = boost::beast::websocket;
using boost::system::error_code;
using tcp = asio::ip::tcp;

class SocketHostEnd final : public HostEnd {
 public:
  explicit SocketHostEnd(tcp::socket socket) : stream_(std::move(socket)) {}

  bool open() {
    error_code ignored;
    stream_.next_layer().set_option(tcp::no_delay(true), ignored);
    stream_.accept(error_);
    return !error_;
  }

  void send(std::string_view text) override { write(true, text); }
  void sendBinary(std::string_view bytes) override { write(false, bytes); }

  PhoneMessage read() override {
    boost::beast::flat_buffer buffer;
    if (!error_) stream_.read(buffer, error_);
    if (error_) return {};
    return {stream_.got_text(), boost::beast::buffers_to_string(buffer.data())};
  }

  bool waitForGoodbye() override {
    while (!error_) read();
    return error_ == websocket::error::closed;
  }

  void hangUp() override {
    error_code ignored;
    stream_.next_layer().close(ignored);
  }

 private:
  void write(bool isText, std::string_view bytes) {
    error_code ignored;
    stream_.text(isText);
    stream_.write(asio::buffer(bytes), ignored);
  }

  websocket::stream<tcp::socket> stream_;
  error_code error_;
};

}  // namespace

struct ScriptedHost::Listening {
  asio::io_context context;
  tcp::acceptor acceptor{context, tcp::endpoint(asio::ip::address_v4::loopback(), 0)};
};

ScriptedHost::ScriptedHost(std::function<void(HostEnd&)> script)
    : listening_(std::make_unique<Listening>()), thread_([this, script = std::move(script)] {
        error_code error;
        SocketHostEnd end(listening_->acceptor.accept(error));
        if (!error && end.open()) script(end);
      }) {}

ScriptedHost::~ScriptedHost() {
  join();
}

std::uint16_t ScriptedHost::port() const {
  return listening_->acceptor.local_endpoint().port();
}

void ScriptedHost::join() {
  if (!thread_.joinable()) return;
  thread_.join();
}

}  // namespace orvel::phone
