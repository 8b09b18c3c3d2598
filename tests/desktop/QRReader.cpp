#include "desktop/QRReader.hpp"

#include "desktop/ChildProcess.hpp"

namespace orvel::QRReader {

std::optional<std::string> textIn(const std::string& pictureFile) {
  ChildProcess reader({.command = {"zbarimg", "--nodbus", "--raw", "-q", pictureFile}});
  if (reader.waitForExit() != 0) return std::nullopt;
  std::string text = reader.output();
  if (text.ends_with('\n')) text.pop_back();
  return text;
}

}  // namespace orvel::QRReader
