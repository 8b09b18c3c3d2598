#include "app/Termination.hpp"

#include "platform/Platform.hpp"

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>
#include <utility>

namespace orvel {
namespace {

constexpr std::chrono::seconds desktopTimeout{3};
constexpr std::chrono::seconds processTimeout{2};

}  // namespace

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

ShutdownWatchdog::~ShutdownWatchdog() {
  ended_.release();
  if (thread_.joinable()) thread_.join();
}

void ShutdownWatchdog::begin(int exitCode) {
  if (begun_.test_and_set()) return;
  thread_ = std::thread([this, exitCode] { waitForEnd(exitCode); });
}

void ShutdownWatchdog::waitForEnd(int exitCode) {
  if (ended_.try_acquire_for(desktopTimeout)) return;
  platform_.giveUp();
  if (!ended_.try_acquire_for(processTimeout)) std::_Exit(exitCode);
}

}  // namespace orvel
