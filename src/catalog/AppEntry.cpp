#include "catalog/AppEntry.hpp"

#include <boost/json/value.hpp>

namespace orvel {

boost::json::object AppEntry::json() const {
  return {{"id", id}, {"name", name}, {"running", running}};
}

std::optional<AppEntry> AppEntry::from(const boost::json::object& json) {
  const auto* id = json.if_contains("id");
  const auto* name = json.if_contains("name");
  const auto* running = json.if_contains("running");
  if (id == nullptr || name == nullptr || running == nullptr) return std::nullopt;
  if (!id->is_string() || !name->is_string() || !running->is_bool()) return std::nullopt;
  return AppEntry{std::string(id->get_string()), std::string(name->get_string()), running->get_bool()};
}

}  // namespace orvel
