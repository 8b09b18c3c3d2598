#include "session/NetworkThread.hpp"

#include "session/NetworkQueue.hpp"
#include "session/WebSocketListener.hpp"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <chrono>
#include <exception>
#include <future>
#include <optional>
#include <thread>

namespace orvel {
namespace {

constexpr std::chrono::seconds shutdownTimeout{2};

}  // namespace

struct NetworkThread::Runner {
  Runner() {
    queue.emplace(context);
    std::packaged_task<void()> run([this] { context.run(); });
    ended = run.get_future();
    thread = std::thread(std::move(run));
  }

  std::optional<NetworkQueue> queue;  // goes after the context, whose last handlers may still post as they go
  boost::asio::io_context context{1};
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work{context.get_executor()};
  std::future<void> ended;
  std::thread thread;
};

NetworkThread::NetworkThread(SocketMonitor& monitor) : monitor_(monitor), runner_(std::make_unique<Runner>()) {}

NetworkThread::~NetworkThread() {
  finish();
}

std::unique_ptr<Listener> NetworkThread::makeListener(const ListenerOptions& options) {
  return std::make_unique<WebSocketListener>(*runner_->queue, monitor_, options);
}

void NetworkThread::finish() {
  if (!runner_->thread.joinable()) return;
  runner_->work.reset();
  const bool isLate = runner_->ended.wait_for(shutdownTimeout) == std::future_status::timeout;
  if (isLate) runner_->context.stop();
  runner_->thread.join();
  if (!isLate) return;
  // The thread may have been held up before the sessions could take themselves down.
  runner_->context.restart();
  try {
    runner_->context.poll();
  } catch (const std::exception&) {
    return;  // no handler throws anything; older releases of Asio say that they might
  }
}

}  // namespace orvel
