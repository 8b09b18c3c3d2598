#include "platform/macos/ProcessSetup.hpp"

#include "platform/macos/NativeText.hpp"

#import <Foundation/Foundation.h>
#include <unicode/locid.h>

#include <algorithm>

namespace orvel {
namespace {

/// More than this the system refuses, even where the hard limit is said to be infinite.
constexpr rlim_t most = 10240;

}  // namespace

void ProcessSetup::allowManyFiles() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = raised(limit);
  setrlimit(RLIMIT_NOFILE, &limit);
}

rlim_t ProcessSetup::raised(const rlimit& limit) {
  return std::max(limit.rlim_cur, std::min(limit.rlim_max, most));
}

void ProcessSetup::applyUserLanguage() {
  @autoreleasepool {
    // Not the current locale, whose language is one that this program's own texts are in.
    const auto language = NativeText::fromNS(NSLocale.preferredLanguages.firstObject);
    if (!language) return;
    UErrorCode error = U_ZERO_ERROR;
    const icu::Locale locale = icu::Locale::forLanguageTag(*language, error);
    if (U_SUCCESS(error)) icu::Locale::setDefault(locale, error);
  }
}

}  // namespace orvel
