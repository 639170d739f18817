#pragma once

#include "ports/NameCollator.h"

#include <memory>
#include <unicode/uversion.h>

U_NAMESPACE_BEGIN
class Collator;
U_NAMESPACE_END

namespace lb {

// Orders names by the rules of the user's locale (from LANG and LC_*),
// ignoring case but not accents, through ICU.
class IcuNameCollator final : public NameCollator {
public:
  IcuNameCollator();
  ~IcuNameCollator() override;
  int compare(const std::string& a, const std::string& b) const override;

private:
  std::unique_ptr<icu::Collator> collator_;
};

} // namespace lb
