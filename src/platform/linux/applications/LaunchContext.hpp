#pragma once

#include "platform/linux/GLibPointer.hpp"

#include <gio/gio.h>

#include <functional>
#include <string>

namespace orvel {

/// Called when a program that wants to be announced is launched; returns the number of the announcement, which the
/// program gets to know. Empty for none.
using AnnounceLaunch = std::function<std::string()>;

/// The circumstances of one launch, as GIO wants them. `announce` must outlive it. Threads: one at a time.
GLibPointer<GAppLaunchContext> makeLaunchContext(const AnnounceLaunch& announce);

}  // namespace orvel
