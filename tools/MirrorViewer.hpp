#pragma once

#include "tools/PhoneResult.hpp"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace orvel::phone {

/// Somebody who watches a mirror, in a window or by its numbers alone, and who may have had enough of it.
///
/// Threads: the one that runs the mirror.
class MirrorViewer {
 public:
  virtual ~MirrorViewer() = default;

  /// Shows a frame, a whole JPEG.
  virtual void show(std::string_view jpeg) = 0;

  /// Reports how the mirror goes, in a line without its end. Called once a second.
  virtual void report(const std::string& line) = 0;

  /// Whether the mirror shall go on. Called many times a second, so that a window can take its events meanwhile.
  virtual bool wantsMore() = 0;
};

/// Finds a viewer for the mirror that begins, with a window or without.
using ViewerFactory = std::function<Result<std::unique_ptr<MirrorViewer>>(bool inWindow)>;

}  // namespace orvel::phone
