#include "tools/DecimalNumber.hpp"

#include <ios>
#include <locale>
#include <sstream>
#include <string>

namespace orvel::phone {

std::optional<double> decimalNumber(std::string_view text) {
  const bool isPlain = !text.starts_with('+') && text.find_first_not_of("0123456789.eE+-") == std::string_view::npos;
  if (!isPlain) return std::nullopt;
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  double number = 0;
  if (!(stream >> std::noskipws >> number) || stream.peek() != std::istringstream::traits_type::eof()) {
    return std::nullopt;
  }
  return number;
}

}  // namespace orvel::phone
