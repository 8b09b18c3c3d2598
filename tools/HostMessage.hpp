#pragma once

#include <boost/json/object.hpp>
#include <boost/json/string.hpp>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

/// What the host says, and how it is read. Threads: any.
namespace orvel::phone {

/// When something had arrived as a whole: by the clock that measures, and by the clock on the wall.
struct Arrival {
  std::chrono::steady_clock::time_point steady;
  std::chrono::system_clock::time_point wall;
};

/// One whole message of the host.
struct HostMessage {
  bool isText = false;
  std::string payload;
  Arrival arrival{};
};

/// The control message that a host's message is, if it is one.
std::optional<boost::json::object> controlIn(const HostMessage& message);

/// Whether there is a control message and it is of this kind.
bool isKind(const std::optional<boost::json::object>& control, std::string_view kind);

/// The string under `key`, if there is one.
const boost::json::string* stringIn(const boost::json::object& message, std::string_view key);

/// Why the host refuses, in its own words where it has any.
std::string reasonIn(const boost::json::object& message);

}  // namespace orvel::phone
