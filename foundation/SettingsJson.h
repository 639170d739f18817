#pragma once

#include "foundation/SettingsValue.h"

#include <optional>
#include <string>
#include <string_view>

namespace lb {

// Settings values as JSON text. JSON numbers with a fraction or exponent are
// reals and the others integers; data is written as {"$data": "<hex>"}. JSON
// null, reals that are not finite and nesting deeper than `maximumDepth`
// have no settings form.
struct SettingsJson {
  static constexpr int maximumDepth = 64;

  // The value, or nothing with `error` saying why.
  static std::optional<SettingsValue> parse(std::string_view text, std::string& error);

  static std::string write(const SettingsValue& value);
  // The same on one line, without its end, as messages quote a value.
  static std::string writeLine(const SettingsValue& value);

  // Whether `write` can keep the value exactly (no NaN or infinity).
  static bool isWritable(const SettingsValue& value);
};

} // namespace lb
