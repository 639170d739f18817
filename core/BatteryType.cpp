#include "core/BatteryType.h"

#include <cmath>
#include <limits>

namespace lb {

namespace {

const SettingsValue* find(const SettingsValue::Dictionary& info, const char* key) {
  auto found = info.find(key);
  return found == info.end() ? nullptr : &found->second;
}

std::optional<int> integer(const SettingsValue* value) {
  auto stored = value ? value->as<std::int64_t>() : nullptr;
  if (!stored || *stored < std::numeric_limits<int>::min() || *stored > std::numeric_limits<int>::max())
    return std::nullopt;
  return static_cast<int>(*stored);
}

// A level that cannot be a number of percent is no information.
std::optional<int> truncated(double value) {
  if (!std::isfinite(value) || std::abs(value) > std::numeric_limits<int>::max()) return std::nullopt;
  return static_cast<int>(std::trunc(value));
}

} // namespace

std::optional<BatteryType> BatteryType::from(const SettingsValue::Dictionary& info) {
  if (auto value = find(info, "BatteryPercent"); value && value->is<double>()) {
    auto percent = truncated(static_cast<double>(static_cast<float>(*value->as<double>()) * 100.0f));
    if (!percent) return std::nullopt;
    return BatteryType{Kind::fraction, *percent};
  }
  if (auto single = integer(find(info, "BatteryPercentSingle"))) return BatteryType{Kind::single, *single};
  auto left = integer(find(info, "BatteryPercentLeft")), right = integer(find(info, "BatteryPercentRight"));
  if (left && right) return BatteryType{Kind::leftRight, *left, *right};
  if (auto value = find(info, "BatteryPercentCombined"); value && value->is<double>()) {
    auto percent = truncated(*value->as<double>());
    if (!percent) return std::nullopt;
    return BatteryType{Kind::single, *percent};
  }
  if (auto value = find(info, "HeadsetBattery")) {
    if (!value->is<double>()) return std::nullopt;
    auto percent = truncated(*value->as<double>());
    if (!percent) return std::nullopt;
    return BatteryType{Kind::single, *percent};
  }
  return std::nullopt;
}

} // namespace lb
