#include "platform/linux/SystemMachine.hpp"

#include "base/UTF8.hpp"
#include "platform/posix/Host.hpp"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <string_view>
#include <utility>

namespace orvel {
namespace {

constexpr std::size_t maximumInfoSize = 65536;
constexpr std::string_view blanks = " \t\r";

/// The value of a shell assignment: quotes taken off, escapes resolved, nothing expanded.
std::string unquoted(std::string_view text) {
  std::string value;
  char quote = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const char next = at + 1 < text.size() ? text[at + 1] : '\0';
    const bool escapes =
        c == '\\' && next != 0 &&
        (quote == 0 || (quote == '"' && std::string_view("\"\\$`").find(next) != std::string_view::npos));
    if (escapes) {
      value += next;
      ++at;
    } else if (quote == 0 && (c == '"' || c == '\'')) {
      quote = c;
    } else if (quote != 0 && c == quote) {
      quote = 0;
    } else if (quote == 0 && blanks.find(c) != std::string_view::npos) {
      break;
    } else {
      value += c;
    }
  }
  return value;
}

std::string startOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string text(maximumInfoSize, '\0');
  stream.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(stream.gcount()));
  return text;
}

/// What a file of shell assignments gives `key`; of several the last counts, as in a shell.
std::string assignedValue(std::string_view text, std::string_view key) {
  std::string value;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size());
    const std::string_view line = trimmed(text.substr(0, length));
    text.remove_prefix(std::min(length + 1, text.size()));
    if (line.starts_with(key) && line.substr(key.size()).starts_with('=')) {
      value = unquoted(line.substr(key.size() + 1));
    }
  }
  return value;
}

}  // namespace

SystemMachine::SystemMachine(std::string machineInfo) : machineInfo_(std::move(machineInfo)) {}

std::optional<std::string> SystemMachine::localizedName() const {
  std::string name = wellFormedUTF8(assignedValue(startOf(machineInfo_), "PRETTY_HOSTNAME"));
  if (name.empty()) return std::nullopt;
  return name;
}

std::string SystemMachine::hostName() const {
  return Host::name();
}

std::string SystemMachine::kind() const {
  return "computer";
}

std::vector<NetworkInterface> SystemMachine::interfaces() const {
  return Host::interfaces();
}

}  // namespace orvel
