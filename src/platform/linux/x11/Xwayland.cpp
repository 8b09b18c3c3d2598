#include "platform/linux/x11/Xwayland.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/randr.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace orvel {
namespace {

constexpr std::string_view extensionName = "XWAYLAND";
constexpr std::string_view outputPrefix = "XWAYLAND";

bool hasExtension(const X11Connection& connection) {
  const auto asked = xcb_query_extension(connection.get(), extensionName.size(), extensionName.data());
  const X11Answer<xcb_query_extension_reply_t> reply{xcb_query_extension_reply(connection.get(), asked, nullptr)};
  return reply && reply->present;
}

std::string outputName(const X11Connection& connection, xcb_randr_get_output_info_cookie_t asked) {
  const X11Answer<xcb_randr_get_output_info_reply_t> info{
      xcb_randr_get_output_info_reply(connection.get(), asked, nullptr)};
  if (!info) return {};
  return {reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())), info->name_len};
}

/// Nothing when the server knows no outputs.
std::optional<std::vector<std::string>> outputNames(const X11Connection& connection) {
  if (connection.extension(xcb_randr_id) == nullptr) return std::nullopt;
  const auto asked = xcb_randr_get_screen_resources_current(connection.get(), connection.root());
  const X11Answer<xcb_randr_get_screen_resources_current_reply_t> resources{
      xcb_randr_get_screen_resources_current_reply(connection.get(), asked, nullptr)};
  if (!resources) return std::nullopt;
  const std::span outputs(xcb_randr_get_screen_resources_current_outputs(resources.get()), resources->num_outputs);
  std::vector<xcb_randr_get_output_info_cookie_t> cookies;
  cookies.reserve(outputs.size());
  for (const xcb_randr_output_t output : outputs) {
    cookies.push_back(xcb_randr_get_output_info(connection.get(), output, XCB_CURRENT_TIME));
  }
  std::vector<std::string> names;
  names.reserve(cookies.size());
  for (const auto& cookie : cookies) names.push_back(outputName(connection, cookie));
  return names;
}

}  // namespace

bool isXwayland(const X11Connection& connection) {
  // Servers before 23.1 do not have the extension yet.
  if (hasExtension(connection)) return true;
  const auto names = outputNames(connection);
  return names && areXwaylandOutputs(*names);
}

bool areXwaylandOutputs(std::span<const std::string> names) {
  // A server of its own lists its outputs whether or not a monitor is connected to them; Xwayland has one for each
  // monitor, and none where the desktop has none yet.
  return names.empty() ||
         std::ranges::any_of(names, [](const std::string& name) { return name.starts_with(outputPrefix); });
}

}  // namespace orvel
