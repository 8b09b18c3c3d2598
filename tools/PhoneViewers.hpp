#pragma once

#include "tools/MirrorViewer.hpp"

#include <QGuiApplication>
#include <array>
#include <memory>
#include <optional>
#include <string>

namespace orvel::phone {

/// The viewers of a phone on a terminal: the terminal itself, and a window on its desktop. Either way Ctrl-C ends the
/// mirror.
///
/// Threads: the main one.
class PhoneViewers {
 public:
  PhoneViewers() = default;
  PhoneViewers(const PhoneViewers&) = delete;
  PhoneViewers& operator=(const PhoneViewers&) = delete;

  /// The viewer for one mirror.
  Result<std::unique_ptr<MirrorViewer>> open(bool inWindow);

  /// Whether somebody wants the program to end, and not the mirror alone.
  bool wereInterrupted() const { return wereInterrupted_; }

 private:
  class Terminal;
  class Window;

  bool wereInterrupted_ = false;

  // The toolkit wants the words of a command line for as long as it lives. Ours are not for it.
  std::string name_ = "orvel-phone";
  std::array<char*, 2> arguments_ = {name_.data(), nullptr};
  int argumentCount_ = 1;
  std::optional<QGuiApplication> application_;
};

}  // namespace orvel::phone
