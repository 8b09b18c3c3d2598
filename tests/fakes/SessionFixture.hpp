#pragma once

#include "fakes/RecordingHub.hpp"
#include "fakes/SessionWorld.hpp"

#include <gtest/gtest.h>

#include <memory>

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

  std::shared_ptr<RecordingHub> hub = std::make_shared<RecordingHub>();
  std::shared_ptr<FakeWire> phone = std::make_shared<FakeWire>(clock);
  std::shared_ptr<ClientSession> session = makeSession(phone);
};

}  // namespace orvel
