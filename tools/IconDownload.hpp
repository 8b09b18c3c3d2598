#pragma once

#include "tools/IconFolder.hpp"
#include "tools/PhoneClient.hpp"

#include <boost/json/object.hpp>

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace orvel::phone {

/// Fetches icons from the host and writes them into a folder, each as a file named after its id.
///
/// Threads: one at a time.
class IconDownload {
 public:
  /// `limit` is for the answer to one request.
  IconDownload(PhoneClient& phone, IconFolder folder, Seconds limit);

  /// Fetches the icons of these ids, as many at a time as the host gives. Ids that are no safe file names are not asked
  /// for.
  Failure fetch(std::span<const std::string> ids);

  /// How many icons were written, and which were not and why, for people.
  std::string report() const;

 private:
  Failure fetchGroup(std::span<const std::string> ids);
  Failure take(const std::string& id, const boost::json::value* icon);

  PhoneClient& phone_;
  const IconFolder folder_;
  const Seconds limit_;
  std::size_t written_ = 0;
  std::vector<std::string> missing_;
  std::vector<std::string> damaged_;
  std::vector<std::string> unsafe_;
};

}  // namespace orvel::phone
