#pragma once

#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace orvel {

/// What the windows of the tests say and hear: lines on their output and their input.
inline void say(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

/// The content of the text entry, each byte as two digits: no line end in it can be taken for the end of the line.
inline void sayText(std::string_view content) {
  std::string line = "text ";
  for (const char byte : content) {
    line += "0123456789abcdef"[static_cast<unsigned char>(byte) / 16];
    line += "0123456789abcdef"[static_cast<unsigned char>(byte) % 16];
  }
  say(line);
}

/// In coordinates of the root window.
struct Place {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

inline void sayPlace(const std::string& widget, const Place& place) {
  std::ostringstream line;
  line << "widget " << widget << ' ' << place.x << ' ' << place.y << ' ' << place.width << ' ' << place.height;
  say(line.str());
}

/// Commands that come on the input, a line each.
class WindowCommands {
 public:
  /// The words of each line that has come; to be called when there is something to read. Sets `ended` at the end.
  std::vector<std::vector<std::string>> take() {
    std::array<char, 512> part{};
    const ssize_t length = read(STDIN_FILENO, part.data(), part.size());
    ended = length <= 0;
    if (length > 0) unread_.append(part.data(), static_cast<std::size_t>(length));
    std::vector<std::vector<std::string>> commands;
    for (std::size_t end = unread_.find('\n'); end != std::string::npos; end = unread_.find('\n')) {
      std::istringstream words(unread_.substr(0, end));
      std::vector<std::string>& command = commands.emplace_back();
      for (std::string word; words >> word;) command.push_back(word);
      unread_.erase(0, end + 1);
    }
    return commands;
  }

  bool ended = false;

 private:
  std::string unread_;
};

}  // namespace orvel
