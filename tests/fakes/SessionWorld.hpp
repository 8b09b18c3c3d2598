#pragma once

#include "fakes/FakeClock.hpp"
#include "fakes/FakeMachine.hpp"
#include "fakes/FakeTransport.hpp"
#include "fakes/RecordingDesktop.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "session/ClientSession.hpp"
#include "session/PairingStore.hpp"

#include <boost/json/serialize.hpp>

#include <string>

namespace orvel {

/// Everything that sessions stand on, made of fakes and of the real rules.
struct SessionWorld {
  SessionWorld() { permission.refresh(); }

  /// What sessions share, with a permission gate of the test's choice.
  SessionServices servicesUnder(PermissionGate& gate) {
    return {.events = desktop,
            .machine = machine,
            .pairing = pairing,
            .permission = gate,
            .pointer = pointer,
            .queues = queues,
            .trust = desktop};
  }

  /// The auth message of a phone that knows the token, for the `hello` that it got.
  std::string proofFor(const FakeWire& wire) {
    return pairing.expectedProof(wire.received("hello").at(0).at("nonce").as_string());
  }

  void authenticate(FakeWire& wire, const std::string& device = "Phone") {
    wire.text(
        boost::json::serialize(boost::json::object{{"t", "auth"}, {"proof", proofFor(wire)}, {"device", device}}));
    clock.runDue();
  }

  FakeClock clock;
  RecordingDesktop desktop;
  FakeMachine machine;
  MemoryPreferences preferences;
  FakeQueueFactory queues{clock};
  FakeExecutor pointerQueue{clock};
  PairingStore pairing{preferences};
  PermissionGate permission{desktop};
  PointerDriver pointer{desktop, desktop, clock, pointerQueue};
  SessionServices services = servicesUnder(permission);
};

}  // namespace orvel
