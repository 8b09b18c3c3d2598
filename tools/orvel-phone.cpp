#include "tools/KeyNames.hpp"
#include "tools/PhoneClient.hpp"
#include "tools/PhoneOptions.hpp"
#include "tools/PhoneRunner.hpp"
#include "tools/PhoneViewers.hpp"
#include "tools/PlainText.hpp"
#include "tools/TypedText.hpp"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvel::phone {
namespace {

enum ExitCode { fine = 0, lost = 1, badUsage = 2, denied = 3 };

constexpr Seconds connectLimit{5};
constexpr Seconds closeLimit{1};

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
  text WORD...     type the words with a space between them; a line break is
                   typed as Return, a tab as Tab
  text -           type what comes from the standard input, up to its end
  media NAME       press volume-up, volume-down, brightness-up, brightness-down,
                   mute, play-pause, next, previous, fast-forward or rewind, or
                   the key of a number
  apps [--json]    print the applications: a star if it runs, its id, its name
  icons FOLDER [ID...]
                   write the icons of these applications, or of all, into
                   FOLDER, each as ID.png
  activate ID      bring an application to the front; start it if needed
  quit ID          ask an application to quit, which it may refuse
  mirror [SECONDS] [--width W] [--fps N] [--quality Q] [--save FOLDER] [--window]
                   have the screen sent, at W pixels across, N frames a second
                   and a quality from 0 to 1, as far as the host sees fit; write
                   the frames into FOLDER as frame-0001.jpg and so on, show them
                   in a window; tell how many came, how large and how old. Ends
                   after SECONDS, by Ctrl-C, or by Escape in the window
  snap             put the pointer onto the small control that it is near
  reveal           draw a small circle with the pointer
  ping             print how long the host took to answer
  wait SECONDS     do nothing for a while

WORD... and ID... go on to the end or to a word --, after which the next command
may stand: text Dear Anna, -- key return.

After text, activate and quit the phone waits until the host has typed the text
or asked the desktop, so that what comes next does not overtake it: 30 seconds
at most, and for text 0.03 seconds more for each byte. Text is UTF-8; up to
1 MiB of it is taken from the standard input.

A mirror's pictures carry no time. How old they were when they arrived is known
only while orvel-clock shows it on the mirrored screen, and right only as far as
the clocks of the two computers agree.

KEY is a name, or a macOS virtual key code such as 0x24, with modifiers in front
of it: cmd+c, ctrl+shift+tab. Modifiers: cmd, shift, option (or alt), ctrl, fn.

Exit codes: 0 fine; 1 no connection, connection lost, no answer in time, or a
file that cannot be written; 2 bad usage; 3 denied. A mirror that is ended by
Ctrl-C is fine; the commands after it are left out.

Examples
  ORVEL_TOKEN=ABCD-EFGH-JKMN-PQRS orvel-phone to 0.5 0.5 reveal
  orvel-phone --token ABCD-EFGH-JKMN-PQRS wait 5 text Hello -- key return
  orvel-phone mirror 10 --width 1280 --save frames

Keys
)";

int complain(const std::string& sentence, ExitCode code) {
  std::cerr << "orvel-phone: " << plainText(sentence) << std::endl;
  return code;
}

int complain(const Error& error) {
  return complain(error.text, error.kind == Error::Kind::denied ? ExitCode::denied : ExitCode::lost);
}

/// Fetches what the steps still lack.
Failure readInput(std::vector<Step>& steps) {
  for (Step& step : steps) {
    auto* text = std::get_if<step::Text>(&step);
    if (!text || !text->fromInput) continue;
    auto input = readTypedText(std::cin);
    if (!input) return input.error();
    text->text = *std::move(input);
  }
  return std::nullopt;
}

int run(const PhoneOptions& options) {
  auto phone = PhoneClient::connect(options.host, options.port, connectLimit);
  if (!phone) return complain(phone.error());
  Welcome welcome;
  if (std::ranges::any_of(options.steps, needsPairing)) {
    const auto paired = phone->pair(options.token, options.device, answerLimit);
    if (!paired) return complain(paired.error());
    welcome = *paired;
  }
  PhoneViewers viewers;
  PhoneRunner runner(*phone, welcome, std::cout, [&](bool inWindow) { return viewers.open(inWindow); });
  for (const auto& step : options.steps) {
    if (const auto failure = runner.run(step)) return complain(*failure);
    if (viewers.wereInterrupted()) break;
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
  auto parsed = parseArguments(arguments, token ? std::optional<std::string>(token) : std::nullopt);
  if (const auto* mistake = std::get_if<std::string>(&parsed)) {
    return complain(*mistake + " (--help tells more)", ExitCode::badUsage);
  }
  auto& options = std::get<PhoneOptions>(parsed);
  if (options.help) {
    std::cout << usage << keyNameList() << std::endl;
    return ExitCode::fine;
  }
  if (const auto failure = readInput(options.steps)) return complain(failure->text, ExitCode::badUsage);
  return run(options);
}
