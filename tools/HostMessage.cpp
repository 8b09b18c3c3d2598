#include "tools/HostMessage.hpp"

#include <boost/json/parse.hpp>
#include <boost/system/error_code.hpp>

#include <utility>

namespace orvel::phone {

std::optional<boost::json::object> controlIn(const HostMessage& message) {
  if (!message.isText) return std::nullopt;
  boost::system::error_code error;
  boost::json::value parsed = boost::json::parse(message.payload, error);
  if (error || !parsed.is_object()) return std::nullopt;
  return std::move(parsed.get_object());
}

bool isKind(const std::optional<boost::json::object>& control, std::string_view kind) {
  const auto* found = control ? stringIn(*control, "t") : nullptr;
  return found && *found == kind;
}

const boost::json::string* stringIn(const boost::json::object& message, std::string_view key) {
  const auto* value = message.if_contains(key);
  return value ? value->if_string() : nullptr;
}

std::string reasonIn(const boost::json::object& message) {
  const auto* reason = stringIn(message, "reason");
  return reason ? std::string(*reason) : "The host gave no reason.";
}

}  // namespace orvel::phone
