#pragma once

#include "base/Executor.hpp"

#include <boost/asio/io_context.hpp>

namespace orvel {

/// The network thread as a serial queue. Threads: any.
class NetworkQueue final : public Executor {
 public:
  /// `context` is run by one thread.
  explicit NetworkQueue(boost::asio::io_context& context);

  void post(Task task) override;
  void postAfter(Seconds delay, Task task) override;

  boost::asio::io_context& context() { return context_; }

 private:
  boost::asio::io_context& context_;
};

}  // namespace orvel
