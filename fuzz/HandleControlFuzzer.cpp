#include "fakes/RecordingHub.hpp"
#include "fakes/SessionWorld.hpp"
#include "session/ControlMessage.hpp"

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

/// Whether a phone can make sense of an answer.
bool isWhole(const boost::json::object& reply) {
  const auto& kind = reply.at("t").as_string();
  if (kind == "apps") return reply.at("items").as_array().size() == 1;
  if (kind == "icons") return reply.at("items").as_object().size() <= ControlMessage::mostIDs;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SessionWorld world;
  world.computer.folders = {{"/Applications", {{"Tool.app", ApplicationBundle{"a", "Tool", {}}}}}};
  world.computer.icons = {{"/Applications/Tool.app", {1, 2, 3}}};
  world.tree.element = AccessibleElement{.role = "AXButton", .position = Point{140, 95}, .size = Size{20, 10}};
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
    for (const auto& reply : phone->wire->received()) require(isWhole(reply));
  }
  return 0;
}
