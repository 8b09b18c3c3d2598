#pragma once

#include <string_view>

namespace orvel::bench {

struct Tally;

/// The token that phones of `runRealServer` prove to know.
inline constexpr std::string_view realServerToken = "BENCHMARKBENCHM4";

/// Orvel's own hub, sessions, permission gate and pointer driver, on their own threads, over a desktop that only
/// counts. Never returns.
void runRealServer(Tally& tally);

}  // namespace orvel::bench
