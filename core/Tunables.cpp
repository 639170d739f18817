#include "core/Tunables.h"

#include "foundation/PXRLog.h"

#include <cmath>

namespace lb {

Tunables::Tunables(UserDefaults& defaults) : defaults_(defaults) {
  defaults_.registerDefaults({
      {std::string(tunable::BatteryInfoUseHelper.key), tunable::BatteryInfoUseHelper.defaultValue},
      {std::string(tunable::BatteryInfoStalenessInterval.key),
       tunable::BatteryInfoStalenessInterval.defaultValue.count()},
  });
}

namespace tunable {

std::map<std::string_view, Known>& known() {
  static std::map<std::string_view, Known> all;
  return all;
}

std::optional<std::string> problem(std::string_view key, const SettingsValue& value) {
  auto found = known().find(key);
  if (found == known().end() || !found->second.numeric) return std::nullopt;
  const auto& range = found->second.range;
  const auto* real = value.as<double>();
  const auto* integer = value.as<std::int64_t>();
  const double number = real ? *real : integer ? static_cast<double>(*integer) : std::nan("");
  if (range.contains(number)) return std::nullopt;
  return std::string(key) + " takes a number from " + pxrDescribeDouble(range.minimum) + " to " +
         pxrDescribeDouble(range.maximum) + ", not " + value.description() + ".";
}

} // namespace tunable

bool Tunables::usable(std::string_view key, double value, const TunableRange& range) const {
  if (range.contains(value)) return true;
  bool first;
  {
    std::lock_guard lock(reportedMutex_);
    first = reported_.insert(std::string(key)).second;
  }
  if (first) {
    PXR_LOG_ERROR("Ignoring the setting " + std::string(key) + " = " + pxrDescribeDouble(value) + ": it must be from " +
                  pxrDescribeDouble(range.minimum) + " to " + pxrDescribeDouble(range.maximum) + ".");
  }
  return false;
}

bool Tunables::read(std::string_view key, bool fallback, const TunableRange&) const {
  return defaults_.boolValue(std::string(key), fallback);
}

std::int64_t Tunables::read(std::string_view key, std::int64_t fallback, const TunableRange& range) const {
  const auto value = defaults_.integerValue(std::string(key), fallback);
  return usable(key, static_cast<double>(value), range) ? value : fallback;
}

double Tunables::read(std::string_view key, double fallback, const TunableRange& range) const {
  const auto value = defaults_.doubleValue(std::string(key), fallback);
  return usable(key, value, range) ? value : fallback;
}

std::string Tunables::read(std::string_view key, const std::string& fallback, const TunableRange&) const {
  return defaults_.stringValue(std::string(key), fallback);
}

tunable::Names Tunables::read(std::string_view key, const tunable::Names& fallback, const TunableRange&) const {
  return defaults_.stringArrayValue(std::string(key), fallback);
}

} // namespace lb
