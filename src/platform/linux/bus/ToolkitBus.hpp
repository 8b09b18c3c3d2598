#pragma once

#include "platform/linux/bus/TimeLimit.hpp"

namespace orvel {

/// Has the toolkit do without the bus of this login when that does not answer within `limit`: it would wait for it
/// without end, when it shows its first window or icon. Called before the application is made and other threads are.
void forgoSilentBus(const TimeLimit& limit);

}  // namespace orvel
