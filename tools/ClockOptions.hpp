#pragma once

#include <optional>
#include <span>
#include <string>
#include <variant>

namespace orvel::phone {

/// What the clock's command line asks for. Threads: as a value.
struct ClockOptions {
  int x = 0;  ///< Where the window stands, in pixels from the left and from the top of the screen.
  int y = 0;
  int width = 960;
  int height = 540;
  double rate = 60;                 ///< How often a second it shows the time.
  double noise = 0;                 ///< The share of the window's height in which something moves.
  std::optional<double> seconds{};  ///< For how long; until somebody ends it when there is no number.
  bool help = false;

  /// How many pixels of the window's height there are for the noise, at its bottom.
  int noiseHeight() const;

  /// The side of a block of the time strip, above the noise.
  int blockSize() const;
};

/// The options in `arguments` (the program's name not among them), or a sentence that says what is wrong with them.
/// Threads: any.
std::variant<ClockOptions, std::string> parseClockArguments(std::span<const std::string> arguments);

}  // namespace orvel::phone
