#pragma once

#include "fakes/RecordingHub.hpp"
#include "fakes/SessionWorld.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace orvel {

/// One session under a hub that records, and the phone's end of its connection.
struct SessionFixture : testing::Test, SessionWorld {
  std::shared_ptr<ClientSession> makeSession(const std::shared_ptr<FakeWire>& wire) {
    auto made = std::make_shared<ClientSession>(std::make_unique<FakeTransport>(wire), hub, services);
    made->start();
    return made;
  }

  void open() {
    phone->open();
    clock.runDue();
  }

  void openAuthenticated() {
    open();
    authenticate(*phone);
    ASSERT_TRUE(session->authenticated());
  }

  /// A second phone, or a third, that has proved its token.
  std::shared_ptr<FakeWire> connectAnother() {
    auto wire = std::make_shared<FakeWire>(clock);
    others.push_back(makeSession(wire));
    wire->open();
    authenticate(*wire);
    EXPECT_TRUE(others.back()->authenticated());
    return wire;
  }

  std::shared_ptr<RecordingHub> hub = std::make_shared<RecordingHub>();
  std::shared_ptr<FakeWire> phone = std::make_shared<FakeWire>(clock);
  std::shared_ptr<ClientSession> session = makeSession(phone);
  std::vector<std::shared_ptr<ClientSession>> others;
};

}  // namespace orvel
