#pragma once

#include "base/Guarded.hpp"

#include <boost/json/object.hpp>

#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace orvel {

class ApplicationBundles;
class Workspace;
struct RunningApplication;

/// One application as the phone sees it. Threads: as any value.
struct AppEntry {
  std::string id;        ///< Its bundle identifier, unique within one snapshot.
  std::string name;      ///< To be shown to people.
  bool running = false;  ///< Whether it came from the list of running programs.

  /// As JSON: "id", "name", "running".
  boost::json::object json() const;

  friend bool operator==(const AppEntry&, const AppEntry&) = default;
};

/// The launcher's view of the computer: its applications, their icons, and the means to start and to end them.
///
/// On a desktop that does not report what runs, no application counts as running: all are listed as installed, to
/// activate one opens it, and none can be asked to end.
///
/// Threads: any; the operations may take as long as the file system and the desktop take.
class AppCatalog {
 public:
  AppCatalog(Workspace& workspace, ApplicationBundles& bundles);

  /// The running applications in the desktop's order, then the installed ones by name. Built afresh.
  std::vector<AppEntry> snapshot();

  /// The icon of an application as the base64 text of a PNG, a square of `size` points. Nothing when the application or
  /// its icon cannot be found.
  std::optional<std::string> icon(const std::string& bundleID, double size);

  /// Brings an application to the front, and starts it if it is not running. No effect when there is none.
  void activate(const std::string& bundleID);

  /// Asks every running instance of an application to end.
  void quit(const std::string& bundleID);

 private:
  using Paths = std::unordered_map<std::string, std::string>;

  struct Scan {
    std::set<std::string> seen;
    Paths paths;
    std::vector<AppEntry> running;
    std::vector<AppEntry> installed;
  };

  void scanRunning(Scan& scan);
  void scanInstalled(Scan& scan);
  void scanFolder(Scan& scan, const std::string& folder);
  static void sortByName(std::vector<AppEntry>& entries);
  std::vector<RunningApplication> instancesOf(const std::string& bundleID);
  std::optional<std::string> location(const std::string& bundleID);

  Workspace& workspace_;
  ApplicationBundles& bundles_;
  Guarded<Paths> pathsByBundleID_;  // as the last snapshot found them
};

}  // namespace orvel
