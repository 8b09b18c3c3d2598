#pragma once

#include "tools/AppList.hpp"
#include "tools/MirrorRun.hpp"
#include "tools/MirrorViewer.hpp"
#include "tools/PhoneClient.hpp"
#include "tools/PhoneScript.hpp"

#include <ostream>
#include <string_view>
#include <vector>

namespace orvel::phone {

/// How long an answer may take in which the host asks nobody else.
inline constexpr Seconds answerLimit{5};

/// How patient a phone is.
struct RunnerLimits {
  Seconds work{30};            ///< For answers in which the host asks the desktop or reads files.
  Seconds typingOfByte{0.03};  ///< On top of that, for each byte that is typed.
  MirrorPace mirror{};
};

/// Carries out the steps of a script on a connected phone. What was asked for goes to `out`, as text.
///
/// Threads: one at a time.
class PhoneRunner {
 public:
  /// `welcome` is the host's, or empty when none of the steps needs pairing.
  PhoneRunner(PhoneClient& phone, Welcome welcome, std::ostream& out, ViewerFactory viewers,
              const RunnerLimits& limits = {});

  /// Carries out one step, and waits for it where a later one could overtake it.
  Failure run(const Step& step);

 private:
  Failure carryOut(const step::Pair& pair);
  Failure carryOut(const step::Move& move);
  Failure carryOut(const step::MoveTo& place);
  Failure carryOut(const step::Button& button);
  Failure carryOut(const step::Click& click);
  Failure carryOut(const step::Drag& drag);
  Failure carryOut(const step::Scroll& scroll);
  Failure carryOut(const step::Key& key);
  Failure carryOut(const step::Text& text);
  Failure carryOut(const step::Media& media);
  Failure carryOut(const step::Apps& apps);
  Failure carryOut(const step::Icons& icons);
  Failure carryOut(const step::App& app);
  Failure carryOut(const step::Mirror& mirror);
  Failure carryOut(const step::Snap& snap);
  Failure carryOut(const step::Reveal& reveal);
  Failure carryOut(const step::Ping& ping);
  Failure carryOut(const step::Wait& wait);

  Result<std::vector<AppEntry>> askForApps();
  Failure finishWork(Seconds limit, std::string_view late);

  PhoneClient& phone_;
  const Welcome welcome_;
  std::ostream& out_;
  const ViewerFactory viewers_;
  const RunnerLimits limits_;
};

}  // namespace orvel::phone
