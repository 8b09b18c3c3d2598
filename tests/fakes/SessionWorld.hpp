#pragma once

#include "fakes/FakeClock.hpp"
#include "fakes/FakeTransport.hpp"
#include "fakes/RecordingDesktop.hpp"
#include "fakes/Rules.hpp"

#include <boost/json/serialize.hpp>

#include <string>

namespace orvel {

/// Time and a desktop, both of which a test moves by hand.
struct FakeSurroundings {
  FakeClock clock;
  RecordingDesktop desktop;
  FakeQueueFactory queues{clock};
};

/// Everything that sessions stand on, made of fakes and of the real rules.
struct SessionWorld : FakeSurroundings, Rules {
  SessionWorld() : Rules(desktop, clock, queues) { permission.refresh(); }

  /// The auth message of a phone that knows the token, for the `hello` that it got.
  std::string proofFor(const FakeWire& wire) {
    return pairing.expectedProof(wire.received("hello").at(0).at("nonce").as_string());
  }

  void authenticate(FakeWire& wire, const std::string& device = "Phone") {
    wire.text(
        boost::json::serialize(boost::json::object{{"t", "auth"}, {"proof", proofFor(wire)}, {"device", device}}));
    clock.runDue();
  }
};

}  // namespace orvel
