#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

namespace orvel::phone {

/// Ctrl-C, SIGTERM and a terminal that closes, heard for as long as this lives. Once one has been noticed,
/// the next ends the program, should it hang.
///
/// Threads: one.
class Interruption {
 public:
  Interruption();

  /// Whether one has come.
  bool hasCome();

 private:
  boost::asio::io_context context_{1};
  boost::asio::signal_set signals_{context_};
  bool hasCome_ = false;
};

}  // namespace orvel::phone
