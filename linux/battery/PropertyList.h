#pragma once

#include "foundation/SettingsValue.h"

#include <string>
#include <string_view>

namespace lb {

// Property lists through libplist: the battery print mode writes one, and
// the program reads back what its helper tool printed.
class PropertyList {
public:
  // The XML form, as the print mode writes it.
  static std::string xml(const SettingsValue& value);
  // An XML or binary property list; throws when the text is none. Dates
  // become seconds since 2001 as reals; the program never reads one.
  static SettingsValue parse(std::string_view text);
};

} // namespace lb
