#pragma once

namespace orvel::bench {

struct Tally;

/// The least that a server can do with motion frames, as the measure of what ours adds: one thread and one epoll loop
/// that greets nobody, checks nothing, unmasks what comes and sums it up. Returns only when it cannot go on.
void runBareServer(Tally& tally);

}  // namespace orvel::bench
