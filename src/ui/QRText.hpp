#pragma once

#include <string>

namespace orvel {

struct QRImage;

namespace QRText {

/// The code with its light margin for a terminal, in lines that each show two rows of modules by half blocks.
/// `colored` sets black and white whatever the terminal's colours are; without it the terminal's ground has to be dark.
/// Threads: any.
std::string lines(const QRImage& image, bool colored);

}  // namespace QRText
}  // namespace orvel
