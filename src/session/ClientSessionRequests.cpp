#include "catalog/AppCatalog.hpp"
#include "input/CursorSnap.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "session/ClientSession.hpp"
#include "session/ControlMessage.hpp"

#include <boost/json/array.hpp>

#include <string>

namespace orvel {
namespace {

constexpr double iconSize = 56;

boost::json::object appsAnswer(AppCatalog& apps) {
  boost::json::array items;
  for (const AppEntry& entry : apps.snapshot()) items.push_back(entry.json());
  return {{"t", "apps"}, {"items", std::move(items)}};
}

boost::json::object iconsAnswer(AppCatalog& apps, const std::vector<std::string>& ids) {
  boost::json::object items;
  for (const std::string& id : ids) {
    if (const auto icon = apps.icon(id, iconSize)) items[id] = *icon;
  }
  return {{"t", "icons"}, {"items", std::move(items)}};
}

}  // namespace

void ClientSession::serve(const ControlMessage& request) {
  if (request.kind == "getApps") {
    getApps();
  } else if (request.kind == "getIcons") {
    if (request.ids) getIcons(*request.ids);
  } else if (request.kind == "snap") {
    services_.snap.settle();
  } else if (request.kind == "reveal") {
    reveal();
  } else if (request.kind == "mirrorStart") {
    startMirror(request.width.value_or(900), request.fps.value_or(12), request.quality.value_or(0.45));
  }
}

void ClientSession::getApps() {
  answerLater([&apps = services_.apps] { return appsAnswer(apps); }, taskCost);
}

void ClientSession::getIcons(const std::vector<std::string>& ids) {
  std::size_t cost = taskCost;
  for (const std::string& id : ids) cost += taskCost + id.size();
  answerLater([&apps = services_.apps, ids] { return iconsAnswer(apps, ids); }, cost);
}

void ClientSession::reveal() {
  if (!services_.permission.cachedTrust()) return;
  handOff(
      [self = weak_from_this(), &pointer = services_.pointer] {
        // Nobody looks for it any more when the phone has left.
        if (!self.expired()) pointer.reveal();
      },
      taskCost);
}

}  // namespace orvel
