#include "platform/macos/UserLanguage.hpp"

#include "platform/macos/FoundationText.hpp"

#import <Foundation/Foundation.h>
#include <unicode/locid.h>

namespace orvel {

void UserLanguage::apply() {
  @autoreleasepool {
    // Not the current locale, whose language is one that this program's own texts are in.
    const auto language = FoundationText::fromSystem(NSLocale.preferredLanguages.firstObject);
    if (!language) return;
    UErrorCode error = U_ZERO_ERROR;
    const icu::Locale locale = icu::Locale::forLanguageTag(*language, error);
    if (U_SUCCESS(error)) icu::Locale::setDefault(locale, error);
  }
}

}  // namespace orvel
