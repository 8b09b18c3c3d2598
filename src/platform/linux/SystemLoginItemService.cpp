#include "platform/linux/SystemLoginItemService.hpp"

#include "platform/linux/applications/AutostartEntry.hpp"
#include "platform/linux/files/SmallFile.hpp"

#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <utility>

namespace orvel {
namespace {

constexpr auto identifier = "app.orvel.Orvel";
constexpr auto withoutPanel = "--background";
constexpr std::size_t largestAutostartEntry = std::size_t{1} << 20;
constexpr int ownFolderMode = 0700;
constexpr int entryFile = 0644;

std::string autostartFolder(const std::string& configuration) {
  return configuration + "/autostart";
}

std::string entryIn(const std::string& configuration) {
  return autostartFolder(configuration) + "/" + identifier + ".desktop";
}

/// Whatever it is: a link to nowhere, too, stands in place of the files of less weight.
bool isThere(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

}  // namespace

SystemLoginItemService::SystemLoginItemService(const ConfigurationFolders& folders, std::string program)
    : folders_(folders), program_(std::move(program)) {}

bool SystemLoginItemService::isEnabled() const {
  return isStartedBy(folders_.own).value_or(isStartedBySystem());
}

bool SystemLoginItemService::enter() {
  const std::string text = entry(false);
  return AutostartEntry::starts(text) && write(text) && isEnabled();
}

bool SystemLoginItemService::remove() {
  if (!isEnabled()) return false;
  const bool isDone = isStartedBySystem() ? write(entry(true)) : unlink(entryIn(folders_.own).c_str()) == 0;
  return isDone && !isEnabled();
}

/// Nothing when that folder says nothing of it.
std::optional<bool> SystemLoginItemService::isStartedBy(const std::string& folder) const {
  const std::string path = entryIn(folder);
  if (!isThere(path)) return std::nullopt;
  const auto text = readSmallFile(path, largestAutostartEntry);
  return text && AutostartEntry::starts(*text);
}

bool SystemLoginItemService::isStartedBySystem() const {
  for (const std::string& folder : folders_.system) {
    if (const auto isStarted = isStartedBy(folder)) return *isStarted;
  }
  return false;
}

std::string SystemLoginItemService::entry(bool isHidden) const {
  return AutostartEntry{
      .name = "Orvel", .icon = identifier, .program = program_, .arguments = {withoutPanel}, .isHidden = isHidden}
      .text();
}

bool SystemLoginItemService::write(const std::string& text) const {
  constexpr auto wholeOrNotAtAll =
      static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT | G_FILE_SET_CONTENTS_DURABLE);
  if (g_mkdir_with_parents(autostartFolder(folders_.own).c_str(), ownFolderMode) != 0) return false;
  return g_file_set_contents_full(entryIn(folders_.own).c_str(), text.data(), static_cast<gssize>(text.size()),
                                  wholeOrNotAtAll, entryFile, nullptr);
}

}  // namespace orvel
