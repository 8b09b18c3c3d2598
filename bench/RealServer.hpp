#pragma once

#include <string_view>

namespace orvel::bench {

struct Tally;

/// The token that phones of `runRealServer` prove to know.
inline constexpr std::string_view realServerToken = "BENCHMARKBENCHM4";

/// Orvel's own hub, sessions, permission gate, pointer driver, mirror and encoder, on their own threads, over a desktop
/// that only counts and whose screen changes as fast as its frames are taken. Never returns.
void runRealServer(Tally& tally);

}  // namespace orvel::bench
