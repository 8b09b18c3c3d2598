#pragma once

#include "fakes/FakeClock.hpp"
#include "fakes/FakeTransport.hpp"
#include "fakes/RecordingHub.hpp"
#include "fakes/Rules.hpp"
#include "platform/macos/SystemAccessibilityTree.hpp"
#include "platform/macos/SystemDisplays.hpp"
#include "platform/macos/SystemEventPoster.hpp"
#include "platform/macos/SystemTrustCheck.hpp"

#include <boost/json/serialize.hpp>

#include <memory>

namespace orvel {

/// The leaves that input goes through.
struct MacDesktop {
  explicit MacDesktop(const Clock& clock) : events(clock) {}

  operator EventPoster&() { return events; }
  operator const Displays&() const { return displays; }
  operator TrustCheck&() { return trust; }

  SystemEventPoster events;
  SystemDisplays displays;
  SystemTrustCheck trust;
};

/// Time that a test moves, and the leaves.
struct MacSurroundings {
  FakeClock clock;
  FakeQueueFactory queues{clock};
  MacDesktop desktop{clock};
};

/// One session on the leaves of a Mac, and the phone's end of its connection.
struct MacSession : MacSurroundings, Rules {
  MacSession() : Rules(desktop, clock, queues) { permission.refresh(); }

  void authenticate() {
    session->start();
    phone->open();
    clock.runDue();
    const auto proof = pairing.expectedProof(phone->received("hello").at(0).at("nonce").as_string());
    phone->text(boost::json::serialize(boost::json::object{{"t", "auth"}, {"proof", proof}, {"device", "Phone"}}));
    clock.runDue();
  }

  SystemAccessibilityTree accessibility;
  CursorSnap snapOfMac{
      {.clock = clock, .permission = permission, .pointer = pointer, .queue = *snapQueue, .tree = accessibility}};
  const SessionServices servicesOfMac{.apps = apps,
                                      .events = desktop,
                                      .keyboard = keyboard,
                                      .keys = keys,
                                      .machine = machine,
                                      .media = media,
                                      .mirror = mirror,
                                      .pairing = pairing,
                                      .permission = permission,
                                      .pointer = pointer,
                                      .queues = queues,
                                      .recording = screen,
                                      .snap = snapOfMac,
                                      .trust = desktop};
  std::shared_ptr<RecordingHub> hub = std::make_shared<RecordingHub>();
  std::shared_ptr<FakeWire> phone = std::make_shared<FakeWire>(clock);
  std::shared_ptr<ClientSession> session =
      std::make_shared<ClientSession>(std::make_unique<FakeTransport>(phone), hub, servicesOfMac);
};

}  // namespace orvel
