#include "app/AppNapGuard.hpp"

#include "app/ServerHub.hpp"
#include "session/Activity.hpp"

namespace orvel {

AppNapGuard::~AppNapGuard() {
  if (isAwake_) activity_.end();
}

void AppNapGuard::follow(const HubState& next) {
  const bool isWanted = !next.clients.empty();
  if (isWanted == isAwake_) return;
  isAwake_ = isWanted;
  if (isWanted) {
    activity_.begin("A phone is connected");
  } else {
    activity_.end();
  }
}

}  // namespace orvel
