#pragma once

#include <functional>
#include <memory>
#include <string>

namespace orvel {

/// Orvel in this login, of which at most one runs. Threads: the main thread.
class Instance {
 public:
  /// Called with the activation token of the other start, which may be empty.
  using ShowPanel = std::function<void(const std::string& token)>;

  virtual ~Instance() = default;

  /// Makes this the one that runs; from then on `showPanel` is called, on the main thread and once the main loop runs,
  /// for every further start. False when another one runs already. Where the login has no means to know, every one is
  /// the first.
  virtual bool claim(ShowPanel showPanel) = 0;

  /// Has the one that runs show its panel. False when none runs or it does not answer in time.
  virtual bool showOther() = 0;

  /// The activation token of this start, which may be empty.
  virtual const std::string& token() const = 0;
};

/// Made before the toolkit, which takes the activation token out of the environment.
std::unique_ptr<Instance> openInstance();

}  // namespace orvel
