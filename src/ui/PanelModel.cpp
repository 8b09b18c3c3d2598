#include "ui/PanelModel.hpp"

#include "ui/LoginItem.hpp"
#include "ui/PanelHost.hpp"
#include "ui/QRMaker.hpp"

#include <algorithm>
#include <utility>

namespace orvel {
namespace {

using Kind = PanelBlock::Kind;

constexpr double qrSide = 190;
constexpr double shownQRSide = 168;

std::string addressText(const PanelState& state) {
  return state.address.value_or("not on a network");
}

PanelText smallText(std::string text) {
  return {.text = std::move(text), .font = PanelFont::small, .color = PanelColor::secondary};
}

PanelBlock headerBlock(const PanelState& state) {
  return {.kind = Kind::header,
          .rows = {PanelStatus{
              .circle = PanelModel::statusColor(state), .title = "Orvel", .text = PanelModel::statusText(state)}}};
}

PanelBlock permissionBlock(const PanelState& state) {
  PanelBlock block{.kind = Kind::permission,
                   .rows = {PanelText{.text = state.permission.heading,
                                      .font = PanelFont::heading,
                                      .symbol = PanelSymbol{Symbol::exclamationMarkTriangleFill, PanelColor::orange}},
                            PanelText{.text = state.permission.explanation, .font = PanelFont::small}}};
  if (!state.permission.action.empty()) {
    block.rows.emplace_back(
        PanelButtons{.buttons = {{state.permission.action, PanelAction::openAccessibilitySettings}}});
  }
  return block;
}

PanelBlock connectionsBlock(const PanelState& state, bool showingQR) {
  PanelBlock block{.kind = Kind::connections,
                   .rows = {PanelLabel{.text = "Connected",
                                       .link = {showingQR ? "Hide code" : "Show code", PanelAction::toggleCode},
                                       .isExpanded = showingQR}}};
  if (state.clients.empty()) block.rows.emplace_back(smallText("No phones right now"));
  for (const std::string& client : state.clients) {
    block.rows.emplace_back(PanelText{.text = client,
                                      .font = PanelFont::small,
                                      .symbol = PanelSymbol{Symbol::iPhone, PanelColor::primary},
                                      .isName = true});
  }
  if (state.mirroring) {
    block.rows.emplace_back(PanelText{.text = "Sharing your screen",
                                      .font = PanelFont::small,
                                      .symbol = PanelSymbol{Symbol::recordCircle, PanelColor::red}});
  }
  if (state.lastError) {
    block.rows.emplace_back(PanelText{.text = *state.lastError, .font = PanelFont::small, .color = PanelColor::red});
  }
  return block;
}

PanelBlock optionsBlock(bool startsAtLogin) {
  return {.kind = Kind::options, .rows = {PanelToggle{.text = "Start at login", .isOn = startsAtLogin}}};
}

PanelBlock footerBlock() {
  return {.kind = Kind::footer,
          .rows = {PanelButtons{.buttons = {{"Restart", PanelAction::restart},
                                            {"New code", PanelAction::newCode},
                                            {"Quit", PanelAction::quit}},
                                .areSmall = true}}};
}

/// Those that are in `now` more often than in `before`.
std::vector<std::string> newcomers(std::vector<std::string> before, const std::vector<std::string>& now) {
  std::vector<std::string> added;
  for (const std::string& client : now) {
    const auto known = std::ranges::find(before, client);
    if (known == before.end()) {
      added.push_back(client);
    } else {
      before.erase(known);
    }
  }
  return added;
}

void addChanges(std::vector<std::string>& news, const PanelState& before, const PanelState& now) {
  for (const std::string& client : newcomers(before.clients, now.clients)) news.push_back("Connected: " + client);
  if (now.mirroring && !before.mirroring) news.emplace_back("Sharing your screen");
  if (!now.mirroring && before.mirroring) news.emplace_back("No longer sharing your screen");
  if (now.lastError && now.lastError != before.lastError) news.push_back(*now.lastError);
}

}  // namespace

std::string PanelModel::statusText(const PanelState& state) {
  if (!state.isRunning) return "Server stopped";
  if (!state.accessibilityGranted) return "Waiting for permission";
  if (state.clients.empty()) return "Listening on " + addressText(state) + ":" + std::to_string(state.port);
  if (state.clients.size() == 1) return "1 phone connected";
  return std::to_string(state.clients.size()) + " phones connected";
}

PanelColor PanelModel::statusColor(const PanelState& state) {
  if (!state.isRunning) return PanelColor::red;
  if (!state.accessibilityGranted) return PanelColor::orange;
  return state.clients.empty() ? PanelColor::secondary : PanelColor::green;
}

void PanelModel::appear() {
  host_.refreshPermission();
}

PanelContent PanelModel::content() const {
  const PanelState state = host_.state();
  PanelContent content{headerBlock(state)};
  if (!state.accessibilityGranted) content.push_back(permissionBlock(state));
  if (showingQR_) content.push_back(pairingBlock(state));
  content.push_back(connectionsBlock(state, showingQR_));
  content.push_back(optionsBlock(loginItem_.isEnabled()));
  content.push_back(footerBlock());
  return content;
}

PanelBlock PanelModel::pairingBlock(const PanelState& state) const {
  const PairingInvitation invitation = host_.invitation();
  PanelBlock block{.kind = Kind::pairing};
  if (auto image = QRMaker::image(invitation.payload, qrSide)) {
    block.rows.emplace_back(PanelQR{.image = std::move(*image), .shownSide = shownQRSide});
  }
  block.rows.emplace_back(PanelText{.text = "Scan this in the app"});
  block.rows.emplace_back(PanelFields{.fields = {{.name = "Address", .text = addressText(state)},
                                                 {.name = "Pairing code", .text = invitation.displayCode}}});
  block.rows.emplace_back(smallText("Or type those two into the app by hand."));
  return block;
}

std::vector<std::string> PanelModel::takeNews() {
  std::vector<std::string> news;
  if (replacedCode_ && host_.invitation().displayCode != *replacedCode_) {
    replacedCode_.reset();
    showingQR_ = true;
    news.emplace_back("There is a new code. Every phone has to pair again.");
  }
  PanelState state = host_.state();
  if (known_) addChanges(news, *known_, state);
  known_ = std::move(state);
  return news;
}

void PanelModel::perform(PanelAction action) {
  switch (action) {
    case PanelAction::openAccessibilitySettings:
      return host_.requestPermission();
    case PanelAction::toggleCode:
      showingQR_ = !showingQR_;
      return;
    case PanelAction::restart:
      return host_.restart();
    case PanelAction::newCode:
      replacedCode_ = host_.invitation().displayCode;
      return host_.renewCode();
    case PanelAction::quit:
      return host_.quit();
  }
}

void PanelModel::setStartAtLogin(bool on) {
  loginItem_.set(on);
}

}  // namespace orvel
