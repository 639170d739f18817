#pragma once

#include "foundation/SettingsValue.h"

#include <optional>

namespace lb {

// How a device's battery information reads: one level, or a left and a
// right earbud.
struct BatteryType {
  enum class Kind { fraction, single, leftRight };
  Kind kind;
  int level;     // fraction, single: the level; leftRight: the left one
  int right = 0; // leftRight: the right one

  // The first rule that applies: "BatteryPercent" as a fraction, then
  // "BatteryPercentSingle", left and right together, "BatteryPercentCombined"
  // and "HeadsetBattery". None when nothing applies.
  static std::optional<BatteryType> from(const SettingsValue::Dictionary& info);

  bool operator==(const BatteryType&) const = default;
};

} // namespace lb
