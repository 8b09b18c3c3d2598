#include "fakes/RecordingHub.hpp"
#include "fakes/SessionWorld.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace {

using namespace orvel;

/// One phone whose messages the fuzzer writes.
struct Phone {
  Phone(SessionWorld& world, const std::shared_ptr<RecordingHub>& hub)
      : wire(std::make_shared<FakeWire>(world.clock)),
        session(std::make_shared<ClientSession>(std::make_unique<FakeTransport>(wire), hub, world.services)) {
    session->start();
    wire->open();
  }

  std::shared_ptr<FakeWire> wire;
  std::shared_ptr<ClientSession> session;
};

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SessionWorld world;
  const auto hub = std::make_shared<RecordingHub>();
  const std::string_view message(reinterpret_cast<const char*>(data), size);

  Phone stranger(world, hub);
  stranger.wire->text(message);
  Phone friendly(world, hub);
  world.authenticate(*friendly.wire);
  friendly.wire->text(message);
  world.clock.advance(Seconds(1));

  require(!stranger.session->authenticated());
  require(friendly.session->authenticated());
  for (const auto* phone : {&stranger, &friendly}) {
    for (const auto& reply : phone->wire->received()) require(reply.contains("t"));
  }
  return 0;
}
