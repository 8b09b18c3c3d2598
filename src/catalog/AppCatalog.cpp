#include "catalog/AppCatalog.hpp"

#include "catalog/ApplicationBundles.hpp"
#include "catalog/NameOrder.hpp"
#include "catalog/Workspace.hpp"

#include <sodium/utils.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>

namespace orvel {
namespace {

std::string base64(const std::vector<std::uint8_t>& bytes) {
  std::string text(sodium_base64_ENCODED_LEN(bytes.size(), sodium_base64_VARIANT_ORIGINAL), '\0');
  sodium_bin2base64(text.data(), text.size(), bytes.data(), bytes.size(), sodium_base64_VARIANT_ORIGINAL);
  text.pop_back();  // the terminator
  return text;
}

std::string nameOf(const ApplicationBundle& bundle, std::string_view entryWithoutSuffix) {
  if (bundle.displayName) return *bundle.displayName;
  if (bundle.name) return *bundle.name;
  return std::string(entryWithoutSuffix);
}

}  // namespace

boost::json::object AppEntry::json() const {
  return {{"id", id}, {"name", name}, {"running", running}};
}

AppCatalog::AppCatalog(Workspace& workspace, ApplicationBundles& bundles) : workspace_(workspace), bundles_(bundles) {}

std::vector<AppEntry> AppCatalog::snapshot() {
  Scan scan;
  scanRunning(scan);
  scanInstalled(scan);
  sortByName(scan.installed);
  pathsByBundleID_.withLock([&](Paths& paths) { paths.swap(scan.paths); });
  std::vector<AppEntry> entries = std::move(scan.running);
  std::move(scan.installed.begin(), scan.installed.end(), std::back_inserter(entries));
  return entries;
}

void AppCatalog::scanRunning(Scan& scan) {
  const auto applications = workspace_.runningApplications().value_or(std::vector<RunningApplication>{});
  for (const RunningApplication& application : applications) {
    if (!application.isRegular || !application.identifier) continue;
    const std::string& identifier = *application.identifier;
    if (!scan.seen.insert(identifier).second) continue;
    scan.running.push_back({identifier, application.name.value_or(identifier), true});
    if (application.location) scan.paths[identifier] = *application.location;
  }
}

void AppCatalog::scanInstalled(Scan& scan) {
  for (const std::string& folder : bundles_.searchPaths()) scanFolder(scan, folder);
}

void AppCatalog::scanFolder(Scan& scan, const std::string& folder) {
  const auto entries = bundles_.list(folder);
  if (!entries) return;
  const std::string_view suffix = bundles_.suffix();
  for (const std::string& entry : *entries) {
    if (!entry.ends_with(suffix)) continue;
    const std::string path = std::string(folder).append("/").append(entry);
    const auto bundle = bundles_.read(path, entry);
    if (!bundle || !scan.seen.insert(bundle->identifier).second || !bundle->isListed) continue;
    scan.paths[bundle->identifier] = path;
    const std::string_view stem(entry.data(), entry.size() - suffix.size());
    scan.installed.push_back({bundle->identifier, nameOf(*bundle, stem), false});
  }
}

void AppCatalog::sortByName(std::vector<AppEntry>& entries) {
  const NameOrder order = NameOrder::ofUser();
  std::vector<std::pair<std::string, AppEntry>> keyed;
  keyed.reserve(entries.size());
  for (AppEntry& entry : entries) keyed.emplace_back(order.key(entry.name), std::move(entry));
  std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::transform(keyed.begin(), keyed.end(), entries.begin(), [](auto& pair) { return std::move(pair.second); });
}

std::optional<std::string> AppCatalog::icon(const std::string& bundleID, double size) {
  const auto path = location(bundleID);
  if (!path) return std::nullopt;
  const auto png = workspace_.icon(*path, size);
  return png ? std::optional(base64(*png)) : std::nullopt;
}

void AppCatalog::activate(const std::string& bundleID) {
  const auto instances = instancesOf(bundleID);
  if (!instances.empty()) {
    workspace_.activate(instances.front());
  } else if (const auto path = location(bundleID)) {
    workspace_.open(*path);
  }
}

void AppCatalog::quit(const std::string& bundleID) {
  for (const RunningApplication& instance : instancesOf(bundleID)) workspace_.terminate(instance);
}

std::vector<RunningApplication> AppCatalog::instancesOf(const std::string& bundleID) {
  auto applications = workspace_.runningApplications().value_or(std::vector<RunningApplication>{});
  std::erase_if(applications,
                [&](const RunningApplication& application) { return application.identifier != bundleID; });
  return applications;
}

std::optional<std::string> AppCatalog::location(const std::string& bundleID) {
  auto known = pathsByBundleID_.withLock([&](const Paths& paths) {
    const auto found = paths.find(bundleID);
    return found == paths.end() ? std::nullopt : std::optional(found->second);
  });
  return known ? known : workspace_.location(bundleID);
}

}  // namespace orvel
