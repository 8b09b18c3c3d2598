#include "platform/linux/MainThreadCall.hpp"

#include <QCoreApplication>
#include <QEvent>
#include <utility>

namespace orvel {

/// Stays on the thread that made it, and gets its events there.
class MainThreadCall::Receiver final : public QObject {
 public:
  explicit Receiver(MainThreadCall& owner) : owner_(owner) {}

  bool event(QEvent* event) override {
    // The event is looked at after the lock was held, so that our own lock orders it too.
    owner_.makeIfAsked();
    return event->type() == QEvent::User || QObject::event(event);
  }

 private:
  MainThreadCall& owner_;
};

MainThreadCall::MainThreadCall(Task call) : call_(std::move(call)) {
  state_.withLock([this](State& state) { state.receiver = std::make_unique<Receiver>(*this); });
}

MainThreadCall::~MainThreadCall() {
  cancel();
}

void MainThreadCall::ask() {
  auto wake = std::make_unique<QEvent>(QEvent::User);
  // Posted under the lock, which keeps the receiver where it is.
  state_.withLock([&](State& state) {
    if (!state.receiver || std::exchange(state.isAsked, true)) return;
    QCoreApplication::postEvent(state.receiver.get(), wake.release());
  });
}

void MainThreadCall::cancel() {
  const auto receiver = state_.withLock([](State& state) { return std::move(state.receiver); });
}

void MainThreadCall::makeIfAsked() {
  const bool isAsked = state_.withLock([](State& state) { return std::exchange(state.isAsked, false); });
  if (isAsked) call_();
}

}  // namespace orvel
