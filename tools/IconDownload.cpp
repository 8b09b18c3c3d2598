#include "tools/IconDownload.hpp"

#include "tools/PlainText.hpp"

#include <boost/json/array.hpp>

#include <algorithm>
#include <utility>

namespace orvel::phone {
namespace {

constexpr std::size_t mostIconsInAnswer = 40;

std::string line(const char* label, const std::vector<std::string>& ids) {
  if (ids.empty()) return "";
  std::string line = label;
  for (const std::string& id : ids) line += " " + (id.empty() ? "\"\"" : plainText(id));
  return line + '\n';
}

}  // namespace

IconDownload::IconDownload(PhoneClient& phone, IconFolder folder, Seconds limit)
    : phone_(phone), folder_(std::move(folder)), limit_(limit) {}

Failure IconDownload::fetch(std::span<const std::string> ids) {
  if (auto failure = folder_.prepare()) return failure;
  std::vector<std::string> wanted;
  for (const std::string& id : ids) (isSafeFileName(id) ? wanted : unsafe_).push_back(id);
  for (std::span<const std::string> rest = wanted; !rest.empty();) {
    const std::size_t count = std::min(rest.size(), mostIconsInAnswer);
    if (auto failure = fetchGroup(rest.first(count))) return failure;
    rest = rest.subspan(count);
  }
  return std::nullopt;
}

Failure IconDownload::fetchGroup(std::span<const std::string> ids) {
  if (auto failure = phone_.send({{"t", "getIcons"}, {"ids", boost::json::array(ids.begin(), ids.end())}})) {
    return failure;
  }
  const auto answer = phone_.receive("icons", limit_);
  if (!answer) return explained(answer.error(), "the host did not send the icons in time");
  const auto* value = answer->if_contains("items");
  const auto* items = value ? value->if_object() : nullptr;
  if (!items) return Error{Error::Kind::unexpected, "the host's icons cannot be understood"};
  for (const std::string& id : ids) {
    if (auto failure = take(id, items->if_contains(id))) return failure;
  }
  return std::nullopt;
}

Failure IconDownload::take(const std::string& id, const boost::json::value* icon) {
  if (!icon) {
    missing_.push_back(id);
    return std::nullopt;
  }
  const auto* base64 = icon->if_string();
  const auto png = base64 ? pngIn(*base64) : std::nullopt;
  if (!png) {
    damaged_.push_back(id);
    return std::nullopt;
  }
  ++written_;
  return folder_.write(id, *png);
}

std::string IconDownload::report() const {
  return "icons written: " + std::to_string(written_) + '\n' + line("no icon:", missing_) +
         line("not a PNG in Base64:", damaged_) + line("not a safe file name:", unsafe_);
}

}  // namespace orvel::phone
