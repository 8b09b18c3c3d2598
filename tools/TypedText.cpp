#include "tools/TypedText.hpp"

#include "base/UTF8.hpp"
#include "tools/PhoneFrames.hpp"

namespace orvel::phone {
namespace {

/// How much of `text` a frame can carry without splitting a character of Unicode.
std::size_t fittingLength(std::string_view text) {
  const auto continuesCharacter = [&](std::size_t place) { return (text[place] & 0xc0) == 0x80; };
  if (text.size() <= longestFrameText) return text.size();
  std::size_t length = longestFrameText;
  while (length > 0 && continuesCharacter(length)) --length;
  return length;
}

}  // namespace

Result<std::string> readTypedText(std::istream& in) {
  std::string text(longestTypedText + 1, '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(in.gcount()));
  if (in.bad()) return Error{Error::Kind::local, "the standard input cannot be read"};
  if (text.size() > longestTypedText) {
    return Error{Error::Kind::local,
                 "the text is too long: at most " + std::to_string(longestTypedText) + " bytes are typed"};
  }
  if (!isValidUTF8(text)) return Error{Error::Kind::local, "the text is not UTF-8"};
  return text;
}

std::vector<std::string_view> frameParts(std::string_view text) {
  std::vector<std::string_view> parts;
  std::size_t start = 0;
  std::size_t end = 0;
  const auto finishPart = [&] {
    if (end > start) parts.push_back(text.substr(start, end - start));
    start = end;
  };
  for (std::string_view character : chunked(text, 1)) {
    if (end - start + character.size() > longestFrameText) finishPart();
    while (character.size() > longestFrameText) {
      end += fittingLength(character);
      character.remove_prefix(end - start);
      finishPart();
    }
    end += character.size();
  }
  finishPart();
  return parts;
}

}  // namespace orvel::phone
