#include "app/TerminationSignals.hpp"

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

#include <csignal>
#include <thread>
#include <utility>

namespace orvel {

struct TerminationSignals::Watch {
  explicit Watch(std::function<void()> handler) {
    signals.async_wait([this, handler = std::move(handler)](const boost::system::error_code& error, int) {
      if (error) return;
      // From here on the system's own answer holds, so that a second Ctrl-C ends a program that hangs.
      signals.clear();
      handler();
    });
    thread = std::thread([this] { context.run(); });
  }

  ~Watch() {
    context.stop();
    thread.join();
  }

  boost::asio::io_context context{1};
  boost::asio::signal_set signals{context, SIGINT, SIGTERM, SIGHUP};
  std::thread thread;
};

TerminationSignals::TerminationSignals(std::function<void()> handler)
    : watch_(std::make_unique<Watch>(std::move(handler))) {}

TerminationSignals::~TerminationSignals() = default;

}  // namespace orvel
