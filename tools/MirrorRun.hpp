#pragma once

#include "tools/FrameFolder.hpp"
#include "tools/LumaDecoder.hpp"
#include "tools/MirrorSession.hpp"
#include "tools/MirrorStatistics.hpp"
#include "tools/MirrorViewer.hpp"
#include "tools/PhoneScript.hpp"

#include <cstddef>
#include <optional>
#include <string>

namespace orvel::phone {

/// How patient a mirror is.
struct MirrorPace {
  Seconds limit{5};  ///< For each answer, and for the first frame.
  Seconds line{1};   ///< From one progress line to the next.
};

/// One mirror from its start to its end: counts what comes, saves it and shows it as a script says.
///
/// Threads: one at a time.
class MirrorRun {
 public:
  MirrorRun(PhoneClient& phone, MirrorViewer& viewer, step::Mirror mirror, const MirrorPace& pace = {});

  /// Mirrors until its time is over or the viewer has had enough.
  Failure carryOut();

  /// What came of it, for people; nothing when the host has not shown its screen.
  std::string report() const;

 private:
  Failure watch();
  Failure awaitFrame(Seconds timeout);
  Failure take(const MirrorFrame& frame);
  void leaveOut(const Error& error);
  Failure withoutFrames() const;

  MirrorSession session_;
  MirrorViewer& viewer_;
  const step::Mirror mirror_;
  const MirrorPace pace_;
  std::optional<FrameFolder> folder_;
  LumaDecoder decoder_;
  MirrorSize size_;
  Moment end_;
  std::optional<MirrorStatistics> statistics_;
  std::size_t leftOut_ = 0;
  std::string firstReason_;
};

}  // namespace orvel::phone
