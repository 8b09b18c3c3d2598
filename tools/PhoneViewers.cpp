#include "tools/PhoneViewers.hpp"

#include "tools/Interruption.hpp"
#include "tools/MirrorWindow.hpp"

#include <unistd.h>

#include <iostream>
#include <iterator>

namespace orvel::phone {
namespace {

bool hasDesktop() {
  return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
         qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

}  // namespace

/// A viewer that reads the numbers.
class PhoneViewers::Terminal : public MirrorViewer {
 public:
  explicit Terminal(bool& wasInterrupted) : wasInterrupted_(wasInterrupted) {}

  void show(std::string_view) override {}

  void report(const std::string& line) override {
    if (isatty(STDOUT_FILENO) != 0) std::cout << line << std::endl;
  }

  bool wantsMore() override {
    wasInterrupted_ = interruption_.hasCome();
    return !wasInterrupted_;
  }

 private:
  bool& wasInterrupted_;
  Interruption interruption_;
};

/// A viewer that also sees the pictures.
class PhoneViewers::Window final : public Terminal {
 public:
  using Terminal::Terminal;

  void show(std::string_view jpeg) override { window_.showPicture(QByteArrayView(jpeg.data(), std::ssize(jpeg))); }

  void report(const std::string& line) override {
    Terminal::report(line);
    window_.setTitle(QString::fromStdString("orvel-phone: " + line));
  }

  bool wantsMore() override {
    QGuiApplication::processEvents();
    return Terminal::wantsMore() && !window_.isClosed();
  }

 private:
  MirrorWindow window_;
};

Result<std::unique_ptr<MirrorViewer>> PhoneViewers::open(bool inWindow) {
  if (!inWindow) return std::unique_ptr<MirrorViewer>(std::make_unique<Terminal>(wereInterrupted_));
  if (!hasDesktop()) return Error{Error::Kind::local, "there is no desktop for a window"};
  if (!application_) application_.emplace(argumentCount_, arguments_.data());
  return std::unique_ptr<MirrorViewer>(std::make_unique<Window>(wereInterrupted_));
}

}  // namespace orvel::phone
