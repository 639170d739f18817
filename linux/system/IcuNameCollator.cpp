#include "linux/system/IcuNameCollator.h"

#include <string_view>
#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

namespace lb {

IcuNameCollator::IcuNameCollator() {
  // The C and POSIX locales collate by code point, capitals first: no order
  // for people. They get the language-neutral Unicode order instead.
  icu::Locale locale = icu::Locale::getDefault();
  if (std::string_view(locale.getVariant()) == "POSIX") locale = icu::Locale::getRoot();
  UErrorCode status = U_ZERO_ERROR;
  collator_.reset(icu::Collator::createInstance(locale, status));
  if (U_FAILURE(status) || !collator_) {
    status = U_ZERO_ERROR;
    collator_.reset(icu::Collator::createInstance(icu::Locale::getRoot(), status));
  }
  if (collator_) collator_->setStrength(icu::Collator::SECONDARY); // case is a tertiary difference
}

IcuNameCollator::~IcuNameCollator() = default;

int IcuNameCollator::compare(const std::string& a, const std::string& b) const {
  if (!collator_) return a.compare(b);
  UErrorCode status = U_ZERO_ERROR;
  auto result = collator_->compare(icu::UnicodeString::fromUTF8(a), icu::UnicodeString::fromUTF8(b), status);
  if (U_FAILURE(status)) return a.compare(b);
  return result == UCOL_LESS ? -1 : result == UCOL_GREATER ? 1 : 0;
}

} // namespace lb
