#pragma once

#include "ui/QRImage.hpp"

#include <optional>
#include <string>

namespace orvel::QRMaker {

/// The text's bytes as a QR code of error-correction level M, `side` points wide and high. Nothing for an empty text
/// and for one that no QR code can hold. Threads: any.
std::optional<QRImage> image(const std::string& text, double side);

}  // namespace orvel::QRMaker
