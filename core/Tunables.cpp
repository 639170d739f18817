#include "core/Tunables.h"

namespace lb {

Tunables::Tunables(UserDefaults& defaults) : defaults_(defaults) {
  defaults_.registerDefaults({
      {std::string(tunable::BatteryInfoUseHelper.key), tunable::BatteryInfoUseHelper.defaultValue},
      {std::string(tunable::BatteryInfoStalenessInterval.key),
       tunable::BatteryInfoStalenessInterval.defaultValue.count()},
  });
}

bool Tunables::read(std::string_view key, bool fallback) const {
  return defaults_.boolValue(std::string(key), fallback);
}

std::int64_t Tunables::read(std::string_view key, std::int64_t fallback) const {
  return defaults_.integerValue(std::string(key), fallback);
}

double Tunables::read(std::string_view key, double fallback) const {
  return defaults_.doubleValue(std::string(key), fallback);
}

std::string Tunables::read(std::string_view key, const std::string& fallback) const {
  return defaults_.stringValue(std::string(key), fallback);
}

tunable::Names Tunables::read(std::string_view key, const tunable::Names& fallback) const {
  return defaults_.stringArrayValue(std::string(key), fallback);
}

} // namespace lb
