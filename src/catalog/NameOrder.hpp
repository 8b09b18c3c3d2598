#pragma once

#include <unicode/uversion.h>

#include <memory>
#include <string>
#include <string_view>

U_NAMESPACE_BEGIN
class Collator;
U_NAMESPACE_END

namespace orvel {

/// The order in which people of one language look for names, whether written in capitals or not.
///
/// Threads: one at a time.
class NameOrder {
 public:
  /// The order of a locale, such as "de_DE"; that of no language in particular for a locale that nobody knows.
  explicit NameOrder(const std::string& locale);
  ~NameOrder();
  NameOrder(const NameOrder&) = delete;
  NameOrder& operator=(const NameOrder&) = delete;

  /// The order of the user's language.
  static NameOrder ofUser();

  /// A key whose bytes compare as `name` does; equal for names that differ in nothing but capitals.
  std::string key(std::string_view name) const;

 private:
  std::unique_ptr<icu::Collator> collator_;
};

}  // namespace orvel
