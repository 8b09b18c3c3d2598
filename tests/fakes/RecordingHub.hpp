#pragma once

#include "session/ClientSession.hpp"

#include <functional>
#include <vector>

namespace orvel {

class RecordingHub final : public SessionHub {
 public:
  void publishClients() override { ++published; }
  void leave(const SessionID& id) override { left.push_back(id); }
  bool linger(const SessionID& id) override {
    if (hasRoom) lingering.push_back(id);
    return hasRoom;
  }

  void setMirroring(bool on) override {
    mirroring.push_back(on);
    if (whenMirroring) whenMirroring();
  }

  int published = 0;
  std::vector<SessionID> left;
  std::vector<SessionID> lingering;
  bool hasRoom = true;  ///< For sessions that linger.
  std::function<void()> whenMirroring;
  std::vector<bool> mirroring;  ///< Every value that was set.
};

}  // namespace orvel
