#pragma once

#include <boost/json/object.hpp>

#include <string>

namespace orvel {

/// One application as the phone sees it. Threads: as any value.
struct AppEntry {
  std::string id;        ///< Its bundle identifier, unique within one snapshot.
  std::string name;      ///< To be shown to people.
  bool running = false;  ///< Whether it came from the list of running programs.

  /// As JSON: "id", "name", "running".
  boost::json::object json() const;

  friend bool operator==(const AppEntry&, const AppEntry&) = default;
};

}  // namespace orvel
