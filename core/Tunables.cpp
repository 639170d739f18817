#include "core/Tunables.h"

#include <algorithm>
#include <cctype>

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

bool isColour(std::string_view text) {
  if (text.empty()) return true;
  if (text.front() == '#') {
    const auto digits = text.size() - 1;
    return (digits == 3 || digits == 6 || digits == 9 || digits == 12) &&
           std::all_of(text.begin() + 1, text.end(),
                       [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); });
  }
  return std::all_of(text.begin(), text.end(), [](char c) { return std::isalpha(static_cast<unsigned char>(c)); });
}

} // namespace tunable

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
