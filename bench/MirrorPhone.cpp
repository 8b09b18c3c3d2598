#include "bench/MirrorPhone.hpp"

#include <stdexcept>
#include <utility>

namespace orvel::bench {
namespace {

using phone::Seconds;

constexpr Seconds timeout{10};

template <class Value>
Value valueOf(phone::Result<Value> result) {
  if (!result) throw std::runtime_error("a phone: " + result.error().text);
  return std::move(*result);
}

phone::PhoneClient pairedClient(std::uint16_t port, std::string_view token) {
  auto client = valueOf(phone::PhoneClient::connect("127.0.0.1", port, timeout));
  valueOf(client.pair(token, "Phone", timeout));
  return client;
}

}  // namespace

MirrorPhone::MirrorPhone(std::uint16_t port, std::string_view token) : client_(pairedClient(port, token)) {}

phone::MirrorSize MirrorPhone::start(const phone::MirrorWish& wish) {
  return valueOf(mirror_.start(wish, timeout));
}

phone::MirrorFrame MirrorPhone::next() {
  return valueOf(mirror_.next(timeout));
}

std::size_t MirrorPhone::countFor(std::chrono::duration<double> time) {
  const phone::Moment end = phone::after(time);
  std::size_t count = 0;
  while (true) {
    const auto frame = mirror_.next(phone::until(end));
    if (frame) {
      ++count;
    } else if (frame.error().kind == phone::Error::Kind::timedOut) {
      return count;
    } else {
      throw std::runtime_error("a phone: " + frame.error().text);
    }
  }
}

void MirrorPhone::stop() {
  if (const auto failure = mirror_.stop(timeout)) throw std::runtime_error("a phone: " + failure->text);
}

}  // namespace orvel::bench
