// How long a page of text takes from the phone until another program has got its last key, beside the keys of the same
// number that the benchmark posts into the same desktop itself.

#include "bench/Bench.hpp"
#include "bench/HostProcess.hpp"
#include "bench/Samples.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "desktop/X11Witness.hpp"
#include "tools/PhoneClient.hpp"
#include "tools/PhoneFrames.hpp"

#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>

namespace orvel::bench {
namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;
using SteadyClock = std::chrono::steady_clock;

constexpr std::size_t pageLength = 2000;
constexpr int pages = extent(10, 2);
constexpr phone::Seconds phoneTimeout{10};
constexpr Milliseconds limit{1000};
constexpr std::uint8_t letterA = 38;
constexpr int leftShift = 50;
constexpr int rightShift = 62;
constexpr int levelShift = 92;

/// Every printable character of ASCII, over and over.
std::string page() {
  std::string text;
  for (std::size_t i = 0; i < pageLength; ++i) text += static_cast<char>(' ' + i % ('~' - ' ' + 1));
  return text;
}

class Course {
 public:
  void run();
  Verdict report() const;

 private:
  static phone::PhoneClient connect();
  void typePage();
  void postDirectly();
  void waitForPage();

  VirtualDesktop desktop_;
  X11Witness witness_{desktop_.display()};
  HostProcess host_{desktop_};
  phone::PhoneClient phone_ = connect();
  Samples orvel_;
  Samples direct_;
};

void Course::run() {
  if (!phone_.pair(hostToken(desktop_), "Phone", phoneTimeout)) throw std::runtime_error("the host lets no phone in");
  for (int i = 0; i < pages; ++i) {
    typePage();
    postDirectly();
  }
}

phone::PhoneClient Course::connect() {
  auto client = phone::PhoneClient::connect("127.0.0.1", hostPort, phoneTimeout);
  if (!client) throw std::runtime_error(client.error().text);
  return std::move(*client);
}

void Course::typePage() {
  const auto frame = phone::textFrame(page());
  witness_.forget();
  const auto sent = SteadyClock::now();
  phone_.sendFrame(*frame);
  waitForPage();
  orvel_.add(Milliseconds(SteadyClock::now() - sent).count());
}

void Course::postDirectly() {
  xcb_connection_t* connection = xcb_connect(desktop_.display().c_str(), nullptr);
  witness_.forget();
  const auto begun = SteadyClock::now();
  for (std::size_t key = 0; key < pageLength; ++key) {
    xcb_test_fake_input(connection, XCB_KEY_PRESS, letterA, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_test_fake_input(connection, XCB_KEY_RELEASE, letterA, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
  }
  xcb_flush(connection);
  waitForPage();
  direct_.add(Milliseconds(SteadyClock::now() - begun).count());
  xcb_disconnect(connection);
}

void Course::waitForPage() {
  const auto hasPage = [](const X11Witness::Inputs& inputs) {
    const auto isCharacter = [](const X11Witness::Input& input) {
      return input.kind == X11Witness::Kind::keyUp && input.detail != leftShift && input.detail != rightShift &&
             input.detail != levelShift;
    };
    return static_cast<std::size_t>(std::count_if(inputs.begin(), inputs.end(), isCharacter)) >= pageLength;
  };
  if (!witness_.waitFor(hasPage)) throw std::runtime_error("the desktop did not get the whole page");
}

Verdict Course::report() const {
  std::printf("%-36s %10s %10s %10s\n", "milliseconds for 2,000 characters", "least", "median", "greatest");
  std::printf("%-36s %10.0f %10.0f %10.0f\n", "typed by Orvel", orvel_.least(), orvel_.median(), orvel_.greatest());
  std::printf("%-36s %10.0f %10.0f %10.0f\n", "one key 2,000 times, posted directly", direct_.least(), direct_.median(),
              direct_.greatest());
  return {orvel_.median() <= limit.count(), "2,000 characters of ASCII are typed within a second"};
}

}  // namespace
}  // namespace orvel::bench

int main() {
  return orvel::bench::runBench("Typing: a page of text from the phone to another program on the desktop", [] {
    orvel::bench::Course course;
    course.run();
    return course.report();
  });
}
