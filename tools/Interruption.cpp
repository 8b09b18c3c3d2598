#include "tools/Interruption.hpp"

#include <csignal>

namespace orvel::phone {

Interruption::Interruption() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    boost::system::error_code ignored;
    signals_.add(number, ignored);
  }
  signals_.async_wait([this](const boost::system::error_code& error, int) {
    if (error) return;
    hasCome_ = true;
    signals_.clear();
  });
}

bool Interruption::hasCome() {
  context_.poll();
  return hasCome_;
}

}  // namespace orvel::phone
