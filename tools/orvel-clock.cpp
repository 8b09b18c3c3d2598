#include "tools/ClockOptions.hpp"
#include "tools/ClockWindow.hpp"
#include "tools/Deadline.hpp"

#include <algorithm>
#include <iostream>
#include <string>
#include <thread>
#include <variant>
#include <vector>

namespace orvel::phone {
namespace {

enum ExitCode { fine = 0, lost = 1, badUsage = 2 };

constexpr const char* usage = R"(Usage: orvel-clock [OPTION]...

Shows the time of this computer's clock as black and white blocks, in a window
above all others. From a picture of the screen orvel-phone mirror reads when it
was taken.

Options
  --geometry WxH+X+Y  the size and the place of the window (960x540+0+0)
  --rate HZ           how often a second it shows the time (60)
  --noise FRACTION    in how much of the window something detailed moves, from
                      its bottom, so that the screen is as hard to send as a
                      film (0)
  --seconds N         ends after so many seconds; otherwise by Ctrl-C
  --help              this text

Exit codes: 0 fine; 1 no X server with 24 bits for a colour, or it has gone;
2 bad usage.
)";

int complain(const std::string& sentence, ExitCode code) {
  std::cerr << "orvel-clock: " << sentence << std::endl;
  return code;
}

WallTime now() {
  return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

int run(const ClockOptions& options) {
  ClockWindow window(options);
  if (!window.open()) return complain("there is no X server with 24 bits for a colour", ExitCode::lost);
  const auto period = std::chrono::duration_cast<Moment::duration>(Seconds(1 / options.rate));
  const Moment end = options.seconds ? after(Seconds(*options.seconds)) : Moment::max();
  for (Moment next = after(Seconds(0)); next < end; next = std::max(next + period, after(Seconds(0)))) {
    std::this_thread::sleep_until(next);
    if (!window.show(now())) return complain("the X server has gone", ExitCode::lost);
  }
  return ExitCode::fine;
}

}  // namespace
}  // namespace orvel::phone

int main(int argc, char** argv) {
  using namespace orvel::phone;
  const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  const auto parsed = parseClockArguments(arguments);
  if (const auto* mistake = std::get_if<std::string>(&parsed)) {
    return complain(*mistake + " (--help tells more)", ExitCode::badUsage);
  }
  const auto& options = std::get<ClockOptions>(parsed);
  if (!options.help) return run(options);
  std::cout << usage << std::flush;
  return ExitCode::fine;
}
