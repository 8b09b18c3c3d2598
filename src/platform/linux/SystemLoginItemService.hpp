#pragma once

#include "platform/linux/files/Files.hpp"
#include "ui/LoginItem.hpp"

#include <optional>
#include <string>

namespace orvel {

/// The desktop's autostart folders. The user's entry wins over those of the same name that the system has, so this
/// program is taken out either by removing that entry or, when the system has one too, by an entry that says so.
///
/// Threads: one at a time.
class SystemLoginItemService final : public LoginItemService {
 public:
  /// `program` is the absolute path of this program.
  SystemLoginItemService(const ConfigurationFolders& folders, std::string program);

  bool isEnabled() const override;
  bool enter() override;
  bool remove() override;

 private:
  std::optional<bool> isStartedBy(const std::string& folder) const;
  bool isStartedBySystem() const;
  std::string entry(bool isHidden) const;
  bool write(const std::string& text) const;

  const ConfigurationFolders folders_;
  const std::string program_;
};

/// The absolute path by which this program can be started again. An AppImage is started as a whole; a program that was
/// replaced by a newer one since it started is the newer one. Empty when it is unknown. Reads the
/// environment. Threads: as the environment.
std::string ownProgram();

}  // namespace orvel
