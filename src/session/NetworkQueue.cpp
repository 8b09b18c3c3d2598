#include "session/NetworkQueue.hpp"

#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <memory>
#include <utility>

namespace orvel {

NetworkQueue::NetworkQueue(boost::asio::io_context& context) : context_(context) {}

void NetworkQueue::post(Task task) {
  boost::asio::post(context_, std::move(task));
}

void NetworkQueue::postAfter(Seconds delay, Task task) {
  const auto wait = std::chrono::duration_cast<std::chrono::steady_clock::duration>(delay);
  const auto timer = std::make_shared<boost::asio::steady_timer>(context_, wait);
  timer->async_wait([timer, task = std::move(task)](const boost::system::error_code& error) {
    if (!error) task();
  });
}

}  // namespace orvel
