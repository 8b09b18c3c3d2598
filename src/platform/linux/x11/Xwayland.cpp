#include "platform/linux/x11/Xwayland.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/randr.h>

#include <algorithm>
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

std::vector<std::string> outputNames(const X11Connection& connection) {
  if (connection.extension(xcb_randr_id) == nullptr) return {};
  const auto asked = xcb_randr_get_screen_resources_current(connection.get(), connection.root());
  const X11Answer<xcb_randr_get_screen_resources_current_reply_t> resources{
      xcb_randr_get_screen_resources_current_reply(connection.get(), asked, nullptr)};
  if (!resources) return {};
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
  return hasExtension(connection) || areXwaylandOutputs(outputNames(connection));
}

bool areXwaylandOutputs(std::span<const std::string> names) {
  return std::ranges::any_of(names, [](const std::string& name) { return name.starts_with(outputPrefix); });
}

}  // namespace orvel
