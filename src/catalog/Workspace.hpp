#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// One running program.
struct RunningApplication {
  std::uint64_t instance = 0;             ///< What the desktop knows it by.
  std::optional<std::string> identifier;  ///< Its bundle identifier.
  std::optional<std::string> name;        ///< In the user's language.
  std::optional<std::string> location;    ///< The path of its bundle.
  bool isRegular = false;                 ///< A program that people switch to, not one of the background.
};

/// The desktop's programs as its user sees them.
///
/// Threads: any, but for `observeActivation`. All but that may take as long as the file system and the desktop take.
class Workspace {
 public:
  virtual ~Workspace() = default;

  /// Calls `handler` whenever another program comes to the front, until this object goes. Called once.
  /// Threads: the handler runs on a thread of the leaf and must be quick.
  virtual void observeActivation(std::function<void()> handler) = 0;

  /// The running programs in the desktop's own order. Nothing where the desktop does not report them.
  virtual std::optional<std::vector<RunningApplication>> runningApplications() = 0;

  /// The path of the bundle with that identifier, or nothing.
  virtual std::optional<std::string> location(const std::string& identifier) = 0;

  /// The icon of the bundle at `path` as a PNG, drawn into a square of `size` points. Nothing when there is none.
  virtual std::optional<std::vector<std::uint8_t>> icon(const std::string& path, double size) = 0;

  /// Brings a running program to the front. No effect when it has ended.
  virtual void activate(const RunningApplication& application) = 0;

  /// Asks a running program to end; it may ask its user first, and refuse.
  virtual void terminate(const RunningApplication& application) = 0;

  /// Starts the bundle at `path` and brings it to the front, also when it runs unreported. It lives on when this
  /// program ends. No effect when it cannot be started, or is still starting since the last time.
  virtual void open(const std::string& path) = 0;
};

}  // namespace orvel
