#include "tools/PhoneRunner.hpp"

#include "tools/IconDownload.hpp"
#include "tools/PlainText.hpp"
#include "tools/TypedText.hpp"

#include <iomanip>
#include <utility>
#include <variant>

namespace orvel::phone {
namespace {

// The host posts relative motion on an 8 ms clock of its own and lets no button wait for it.
constexpr Seconds motionPause{0.025};
constexpr Seconds dragPartPause{0.010};
// The host does not say when the pointer has arrived: it looks what is there, and glides for 90 ms.
constexpr Seconds snapPause{0.25};

}  // namespace

PhoneRunner::PhoneRunner(PhoneClient& phone, Welcome welcome, std::ostream& out, ViewerFactory viewers,
                         const RunnerLimits& limits)
    : phone_(phone), welcome_(std::move(welcome)), out_(out), viewers_(std::move(viewers)), limits_(limits) {}

Failure PhoneRunner::run(const Step& step) {
  return std::visit([this](const auto& known) { return carryOut(known); }, step);
}

Failure PhoneRunner::carryOut(const step::Pair&) {
  out_ << "computer: " << plainText(welcome_.mac) << "\ninput: " << (welcome_.accessibility ? "allowed" : "not allowed")
       << std::endl;
  return std::nullopt;
}

Failure PhoneRunner::carryOut(const step::Move& move) {
  if (auto failure = phone_.sendFrame(moveFrame(move.dx, move.dy))) return failure;
  return phone_.idle(motionPause);
}

Failure PhoneRunner::carryOut(const step::MoveTo& place) {
  return phone_.sendFrame(moveAbsoluteFrame(place.nx, place.ny));
}

Failure PhoneRunner::carryOut(const step::Button& button) {
  return phone_.sendFrame(buttonFrame(button.button, button.down));
}

Failure PhoneRunner::carryOut(const step::Click& click) {
  for (int count = 1; count <= click.count; ++count) {
    if (auto failure = phone_.sendFrame(clickFrame(click.button, static_cast<std::uint8_t>(count)))) return failure;
  }
  return std::nullopt;
}

Failure PhoneRunner::carryOut(const step::Drag& drag) {
  if (auto failure = phone_.sendFrame(buttonFrame(MouseButton::left, true))) return failure;
  for (const auto& part : partsOf(drag)) {
    if (auto failure = phone_.sendFrame(moveFrame(part.dx, part.dy))) return failure;
    if (auto failure = phone_.idle(dragPartPause)) return failure;
  }
  if (auto failure = phone_.idle(motionPause)) return failure;
  return phone_.sendFrame(buttonFrame(MouseButton::left, false));
}

Failure PhoneRunner::carryOut(const step::Scroll& scroll) {
  return phone_.sendFrame(scrollFrame(scroll.dx, scroll.dy));
}

Failure PhoneRunner::carryOut(const step::Key& key) {
  if (key.down) {
    if (auto failure = phone_.sendFrame(keyFrame(key.chord.keyCode, true, key.chord.modifiers))) return failure;
  }
  if (!key.up) return std::nullopt;
  return phone_.sendFrame(keyFrame(key.chord.keyCode, false, key.chord.modifiers));
}

Failure PhoneRunner::carryOut(const step::Text& text) {
  for (const std::string_view part : frameParts(text.text)) {
    if (auto failure = phone_.sendFrame(*textFrame(part))) return failure;
    // Each part by itself: of what waits to be typed the host takes a few frames only, and then listens no more.
    const Seconds limit = limits_.work + limits_.typingOfByte * static_cast<double>(part.size());
    if (auto failure = finishWork(limit, "the host has not typed the text in time")) return failure;
  }
  return std::nullopt;
}

Failure PhoneRunner::carryOut(const step::Media& media) {
  return phone_.sendFrame(mediaFrame(media.key));
}

Failure PhoneRunner::carryOut(const step::Apps& apps) {
  const auto list = askForApps();
  if (!list) return list.error();
  out_ << (apps.asJSON ? appJSON(*list) : appTable(*list)) << std::flush;
  return std::nullopt;
}

Failure PhoneRunner::carryOut(const step::Icons& icons) {
  std::vector<std::string> ids = icons.ids;
  if (ids.empty()) {
    const auto list = askForApps();
    if (!list) return list.error();
    for (const AppEntry& app : *list) ids.push_back(app.id);
  }
  IconDownload download(phone_, IconFolder(icons.folder), limits_.work);
  if (auto failure = download.fetch(ids)) return failure;
  out_ << download.report() << std::flush;
  return std::nullopt;
}

Failure PhoneRunner::carryOut(const step::App& app) {
  if (auto failure = phone_.sendFrame(*appFrame(app.action, app.id))) return failure;
  return finishWork(limits_.work, "the host has not asked the desktop in time");
}

Failure PhoneRunner::carryOut(const step::Mirror& mirror) {
  const auto viewer = viewers_(mirror.inWindow);
  if (!viewer) return viewer.error();
  MirrorRun run(phone_, **viewer, mirror, limits_.mirror);
  auto failure = run.carryOut();
  out_ << run.report() << std::flush;
  return failure;
}

Failure PhoneRunner::carryOut(const step::Snap&) {
  if (auto failure = phone_.send({{"t", "snap"}})) return failure;
  return phone_.idle(snapPause);
}

Failure PhoneRunner::carryOut(const step::Reveal&) {
  return phone_.send({{"t", "reveal"}});
}

Failure PhoneRunner::carryOut(const step::Ping&) {
  const auto time = phone_.ping(answerLimit);
  if (!time) return time.error();
  out_ << "pong: " << std::fixed << std::setprecision(2) << time->count() * 1000 << " ms" << std::endl;
  return std::nullopt;
}

Failure PhoneRunner::carryOut(const step::Wait& wait) {
  return phone_.idle(Seconds(wait.seconds));
}

Result<std::vector<AppEntry>> PhoneRunner::askForApps() {
  if (auto failure = phone_.send({{"t", "getApps"}})) return *std::move(failure);
  const auto answer = phone_.receive("apps", limits_.work);
  if (!answer) return explained(answer.error(), "the host did not list its applications in time");
  return appsIn(*answer);
}

Failure PhoneRunner::finishWork(Seconds limit, std::string_view late) {
  auto failure = phone_.finishWork(limit);
  if (failure) failure = explained(*std::move(failure), late);
  return failure;
}

}  // namespace orvel::phone
