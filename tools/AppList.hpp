#pragma once

#include "catalog/AppCatalog.hpp"
#include "tools/PhoneResult.hpp"

#include <boost/json/object.hpp>

#include <span>
#include <string>
#include <vector>

/// The host's list of applications. Threads: any.
namespace orvel::phone {

/// The list in the host's answer, in the host's order.
Result<std::vector<AppEntry>> appsIn(const boost::json::object& answer);

/// One line for each: a star when it runs, the id, the name.
std::string appTable(std::span<const AppEntry> apps);

/// The same as a JSON array in one line.
std::string appJSON(std::span<const AppEntry> apps);

}  // namespace orvel::phone
