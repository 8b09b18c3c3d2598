#include "catalog/NameOrder.hpp"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <cstring>

namespace orvel {
namespace {

/// The plain C locale knows the order of bytes alone, in which "Zebra" comes before "ant": no order for people.
bool isForMachines(const icu::Locale& locale) {
  return std::strcmp(locale.getVariant(), "POSIX") == 0;
}

}  // namespace

NameOrder::NameOrder(const std::string& locale) {
  const icu::Locale wanted(locale.c_str());
  UErrorCode error = U_ZERO_ERROR;
  collator_.reset(icu::Collator::createInstance(isForMachines(wanted) ? icu::Locale::getRoot() : wanted, error));
  if (collator_) collator_->setStrength(icu::Collator::SECONDARY);
}

NameOrder::~NameOrder() = default;

NameOrder NameOrder::ofUser() {
  return NameOrder(icu::Locale::getDefault().getName());
}

std::string NameOrder::key(std::string_view name) const {
  if (!collator_) return std::string(name);
  const auto text = icu::UnicodeString::fromUTF8({name.data(), static_cast<std::int32_t>(name.size())});
  std::string key(static_cast<std::size_t>(collator_->getSortKey(text, nullptr, 0)), '\0');
  collator_->getSortKey(text, reinterpret_cast<std::uint8_t*>(key.data()), static_cast<std::int32_t>(key.size()));
  return key;
}

}  // namespace orvel
