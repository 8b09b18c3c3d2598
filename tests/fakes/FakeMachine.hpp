#pragma once

#include "session/Advertiser.hpp"
#include "session/Machine.hpp"
#include "session/Preferences.hpp"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

class FakeMachine final : public Machine {
 public:
  std::optional<std::string> localizedName() const override { return localized; }
  std::string hostName() const override { return host; }
  std::string kind() const override { return kindName; }
  std::vector<NetworkInterface> interfaces() const override { return addresses; }

  std::optional<std::string> localized = "Test Mac";
  std::string host = "test-mac.local";
  std::string kindName = "Mac";
  std::vector<NetworkInterface> addresses = {{"en0", "10.0.0.2", true, false}};
};

class MemoryPreferences final : public Preferences {
 public:
  std::optional<std::string> string(const std::string& key) const override {
    const auto found = texts.find(key);
    return found == texts.end() ? std::nullopt : std::optional(found->second);
  }
  void setString(const std::string& key, const std::string& value) override {
    if (beforeWriting) beforeWriting();
    texts[key] = value;
  }

  void setMissing(const std::string& key, const std::string& value) override { setString(key, value); }

  void add(const std::string& key, const std::string& value) override {
    auto& list = lists[key];
    if (std::ranges::find(list, value) != list.end()) return;
    if (beforeWriting) beforeWriting();
    list.push_back(value);
  }

  void remove(const std::string& key) override {
    texts.erase(key);
    lists.erase(key);
  }

  std::function<void()> beforeWriting;
  std::map<std::string, std::string> texts;
  std::map<std::string, std::vector<std::string>> lists;
};

class RecordingAdvertiser final : public Advertiser {
 public:
  struct Service {
    std::string name;
    std::string type;
    std::uint16_t port;
  };

  void advertise(const std::string& name, const std::string& type, std::uint16_t port) override {
    service = Service{name, type, port};
  }
  void withdraw() override { service.reset(); }

  std::optional<Service> service;
};

}  // namespace orvel
