#include "ui/MainLoop.hpp"

#include "base/Guarded.hpp"
#include "ui/SymbolImage.hpp"

#include <QApplication>
#include <QEvent>
#include <QIcon>
#include <QPixmap>
#include <QSessionManager>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>
#include <vector>

namespace orvel {
namespace {

/// Runs posted tasks when the event loop comes round to it.
class Inbox final : public QObject {
 public:
  void add(Task task) {
    // Made before and looked at after the lock is held, so that our own lock orders the event as well as the tasks.
    auto wake = std::make_unique<QEvent>(QEvent::User);
    const bool wasEmpty = tasks_.withLock([&](std::vector<Task>& tasks) {
      tasks.push_back(std::move(task));
      return tasks.size() == 1;
    });
    if (wasEmpty) QCoreApplication::postEvent(this, wake.release());
  }

  bool event(QEvent* event) override {
    const auto due = tasks_.withLock([](std::vector<Task>& tasks) { return std::exchange(tasks, {}); });
    for (const Task& task : due) task();
    return event->type() == QEvent::User || QObject::event(event);
  }

 private:
  Guarded<std::vector<Task>> tasks_;
};

/// For a program that is not installed.
QIcon plainIcon() {
  constexpr int side = 64;
  return QIcon(QPixmap::fromImage(SymbolImage::plain(Symbol::cursorArrowRays, side)));
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

struct MainLoop::Application {
  explicit Application(std::vector<std::string> texts)
      : arguments(std::move(texts)),
        pointers(pointersTo(arguments)),
        count(static_cast<int>(arguments.size())),
        toolkit(count, pointers.data()) {
    // The panel comes and goes; the program stays.
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationDisplayName(QStringLiteral("Orvel"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("app.orvel.Orvel"), plainIcon()));
    QApplication::setStyle(QStringLiteral("fusion"));
    // Whether it starts at login is the user's choice alone, so no session that is restored starts it.
    QObject::connect(
        &toolkit, &QApplication::saveStateRequest, &toolkit,
        [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); }, Qt::DirectConnection);
  }

  // The toolkit keeps references to all three.
  std::vector<std::string> arguments;
  std::vector<char*> pointers;
  int count;
  QApplication toolkit;
  Inbox inbox;
};

MainLoop::MainLoop(std::vector<std::string> arguments)
    : application_(std::make_unique<Application>(std::move(arguments))) {}

MainLoop::~MainLoop() = default;

void MainLoop::post(Task task) {
  application_->inbox.add(std::move(task));
}

void MainLoop::postAfter(Seconds delay, Task task) {
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(std::max(delay, Seconds(0)));
  post([this, wait, task = std::move(task)] { QTimer::singleShot(wait, &application_->inbox, task); });
}

int MainLoop::run() {
  return QCoreApplication::exec();
}

void MainLoop::quit(int exitCode) {
  post([exitCode] { QCoreApplication::exit(exitCode); });
}

}  // namespace orvel
