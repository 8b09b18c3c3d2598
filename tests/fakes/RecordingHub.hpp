#pragma once

#include "session/SessionHub.hpp"

#include <vector>

namespace orvel {

class RecordingHub final : public SessionHub {
 public:
  void publishClients() override { ++published; }
  void leave(const SessionID& id) override { left.push_back(id); }

  int published = 0;
  std::vector<SessionID> left;
};

}  // namespace orvel
