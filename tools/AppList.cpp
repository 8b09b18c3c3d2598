#include "tools/AppList.hpp"

#include "base/UTF8.hpp"
#include "tools/PlainText.hpp"

#include <boost/json/array.hpp>
#include <boost/json/serialize.hpp>

#include <algorithm>
#include <cstddef>
#include <optional>

namespace orvel::phone {
namespace {

constexpr std::size_t widestColumn = 48;

std::size_t widthOf(const std::string& text) {
  return utf16(text).size();
}

std::size_t columnFor(const std::vector<std::string>& ids) {
  std::size_t width = 0;
  for (const std::string& id : ids) width = std::max(width, widthOf(id));
  return std::min(width, widestColumn);
}

/// Nothing when a key is missing or of another type; further keys are ignored.
std::optional<AppEntry> appIn(const boost::json::object& json) {
  const auto* id = json.if_contains("id");
  const auto* name = json.if_contains("name");
  const auto* running = json.if_contains("running");
  if (id == nullptr || name == nullptr || running == nullptr) return std::nullopt;
  if (!id->is_string() || !name->is_string() || !running->is_bool()) return std::nullopt;
  return AppEntry{std::string(id->get_string()), std::string(name->get_string()), running->get_bool()};
}

}  // namespace

Result<std::vector<AppEntry>> appsIn(const boost::json::object& answer) {
  const Error damaged{Error::Kind::unexpected, "the host's list of applications cannot be understood"};
  const auto* value = answer.if_contains("items");
  const auto* items = value ? value->if_array() : nullptr;
  if (!items) return damaged;
  std::vector<AppEntry> apps;
  for (const auto& item : *items) {
    const auto* object = item.if_object();
    const auto app = object ? appIn(*object) : std::nullopt;
    if (!app) return damaged;
    apps.push_back(*app);
  }
  return apps;
}

std::string appTable(std::span<const AppEntry> apps) {
  std::vector<std::string> ids;
  for (const AppEntry& app : apps) ids.push_back(plainText(app.id));
  const std::size_t column = columnFor(ids);
  std::string table;
  for (std::size_t row = 0; row < apps.size(); ++row) {
    const std::size_t width = widthOf(ids[row]);
    table += apps[row].running ? "* " : "  ";
    table += ids[row] + std::string(width < column ? column - width : 0, ' ');
    table += "  " + plainText(apps[row].name) + '\n';
  }
  return table;
}

std::string appJSON(std::span<const AppEntry> apps) {
  boost::json::array items;
  for (const AppEntry& app : apps) items.push_back(app.json());
  return boost::json::serialize(items) + '\n';
}

}  // namespace orvel::phone
