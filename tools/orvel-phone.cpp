#include "tools/KeyNames.hpp"
#include "tools/PhoneClient.hpp"
#include "tools/PhoneFrames.hpp"
#include "tools/PhoneOptions.hpp"
#include "tools/PhoneScript.hpp"

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvel::phone {
namespace {

enum ExitCode { fine = 0, lost = 1, badUsage = 2, denied = 3 };

constexpr Seconds connectLimit{5};
constexpr Seconds answerLimit{5};
constexpr Seconds closeLimit{1};
// The host posts relative motion on an 8 ms clock of its own and lets no button wait for it.
constexpr Seconds motionPause{0.025};
constexpr Seconds dragPartPause{0.010};

constexpr const char* usage = R"(Usage: orvel-phone [OPTION]... COMMAND...

A small phone: connects to Orvel, carries out the commands in their order, makes
sure that the host has handled them, and leaves.

Options
  --host HOST      where Orvel runs (127.0.0.1)
  --port PORT      its port (8787)
  --token TOKEN    the pairing code as the host shows it, in groups or not, in
                   any case; better given in the environment variable
                   ORVEL_TOKEN, which other users cannot see
  --device NAME    the name that the host lists this phone under (orvel-phone)
  --help           this text

Commands
  pair             print the computer's name and whether it allows input
  move DX DY       move the pointer by points; down and right are positive
  to X Y           put the pointer at a fraction of the main display, 0 to 1
  press BUTTON     press left, right or middle
  release BUTTON   let it go; what is held when the phone leaves is let go, too
  click BUTTON [N] click once, or N times in quick succession
  drag DX DY       hold the left button, move in small steps, let go
  scroll DX DY     turn the wheels by pixels; up and left are positive
  key KEY          press and release a key
  keydown KEY      press it only
  keyup KEY        release it only
  reveal           draw a small circle with the pointer
  ping             print how long the host took to answer
  wait SECONDS     do nothing for a while

KEY is a name, or a macOS virtual key code such as 0x24, with modifiers in front
of it: cmd+c, ctrl+shift+tab. Modifiers: cmd, shift, option (or alt), ctrl, fn.

Exit codes: 0 fine, 1 no connection or connection lost, 2 bad usage, 3 denied.

Example
  ORVEL_TOKEN=ABCD-EFGH-JKMN-PQRS orvel-phone to 0.5 0.5 click left key cmd+c

Keys
)";

/// Carries out one step each.
struct Runner {
  PhoneClient& phone;
  const std::optional<Welcome>& welcome;

  Failure operator()(const step::Pair&) const {
    std::cout << "computer: " << welcome->mac << "\ninput: " << (welcome->accessibility ? "allowed" : "not allowed")
              << std::endl;
    return std::nullopt;
  }

  Failure operator()(const step::Move& move) const {
    if (auto failure = phone.sendFrame(moveFrame(move.dx, move.dy))) return failure;
    return phone.idle(motionPause);
  }

  Failure operator()(const step::MoveTo& place) const { return phone.sendFrame(moveAbsoluteFrame(place.nx, place.ny)); }

  Failure operator()(const step::Button& button) const {
    return phone.sendFrame(buttonFrame(button.button, button.down));
  }

  Failure operator()(const step::Click& click) const {
    for (int count = 1; count <= click.count; ++count) {
      if (auto failure = phone.sendFrame(clickFrame(click.button, static_cast<std::uint8_t>(count)))) return failure;
    }
    return std::nullopt;
  }

  Failure operator()(const step::Drag& drag) const {
    if (auto failure = phone.sendFrame(buttonFrame(MouseButton::left, true))) return failure;
    for (const auto& part : partsOf(drag)) {
      if (auto failure = phone.sendFrame(moveFrame(part.dx, part.dy))) return failure;
      if (auto failure = phone.idle(dragPartPause)) return failure;
    }
    if (auto failure = phone.idle(motionPause)) return failure;
    return phone.sendFrame(buttonFrame(MouseButton::left, false));
  }

  Failure operator()(const step::Scroll& scroll) const { return phone.sendFrame(scrollFrame(scroll.dx, scroll.dy)); }

  Failure operator()(const step::Key& key) const {
    if (key.down) {
      if (auto failure = phone.sendFrame(keyFrame(key.chord.keyCode, true, key.chord.modifiers))) return failure;
    }
    if (!key.up) return std::nullopt;
    return phone.sendFrame(keyFrame(key.chord.keyCode, false, key.chord.modifiers));
  }

  Failure operator()(const step::Reveal&) const { return phone.send({{"t", "reveal"}}); }

  Failure operator()(const step::Ping&) const {
    const auto time = phone.ping(answerLimit);
    if (!time) return time.error();
    std::cout << "pong: " << std::fixed << std::setprecision(2) << time->count() * 1000 << " ms" << std::endl;
    return std::nullopt;
  }

  Failure operator()(const step::Wait& wait) const { return phone.idle(Seconds(wait.seconds)); }
};

int complain(const std::string& sentence, ExitCode code) {
  std::cerr << "orvel-phone: " << sentence << std::endl;
  return code;
}

int complain(const Error& error) {
  return complain(error.text, error.kind == Error::Kind::denied ? ExitCode::denied : ExitCode::lost);
}

int run(const PhoneOptions& options) {
  auto phone = PhoneClient::connect(options.host, options.port, connectLimit);
  if (!phone) return complain(phone.error());
  std::optional<Welcome> welcome;
  if (std::ranges::any_of(options.steps, needsPairing)) {
    const auto paired = phone->pair(options.token, options.device, answerLimit);
    if (!paired) return complain(paired.error());
    welcome = *paired;
  }
  for (const auto& step : options.steps) {
    if (const auto failure = std::visit(Runner{*phone, welcome}, step)) return complain(*failure);
  }
  if (const auto handled = phone->ping(answerLimit); !handled) return complain(handled.error());
  // The host may answer a goodbye by closing at once; all that matters has been handled.
  static_cast<void>(phone->close(closeLimit));
  return ExitCode::fine;
}

}  // namespace
}  // namespace orvel::phone

int main(int argc, char** argv) {
  using namespace orvel::phone;
  const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  const char* const token = std::getenv("ORVEL_TOKEN");
  const auto parsed = parseArguments(arguments, token ? std::optional<std::string>(token) : std::nullopt);
  if (const auto* mistake = std::get_if<std::string>(&parsed)) {
    return complain(*mistake + " (--help tells more)", ExitCode::badUsage);
  }
  const auto& options = std::get<PhoneOptions>(parsed);
  if (options.help) {
    std::cout << usage << keyNameList() << std::endl;
    return ExitCode::fine;
  }
  return run(options);
}
