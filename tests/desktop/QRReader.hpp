#pragma once

#include <optional>
#include <string>

namespace orvel::QRReader {

/// The text of the QR code that a picture file shows, as a phone's camera sees it. Nothing when there is none.
///
/// Threads: any.
std::optional<std::string> textIn(const std::string& pictureFile);

}  // namespace orvel::QRReader
