#include "core/LowBatteryWarnings.h"

#include "core/LogAreas.h"
#include "core/Texts.h"

#include <utility>

namespace lb {

namespace {

constexpr const char* toldKey = "told";
constexpr const char* atKey = "at"; // seconds since 1970

} // namespace

void LowBatteryWarnings::levelsRead(const Device& device, const BatteryType& levels) {
  std::vector<std::pair<std::string, int>> read{{"battery", levels.level}};
  if (levels.kind == BatteryType::Kind::leftRight) read = {{"left", levels.level}, {"right", levels.right}};
  const auto warning = tunables_(tunable::LowBatteryWarningLevel);
  const auto critical = tunables_(tunable::LowBatteryCriticalLevel);
  auto& sides = sidesOf(device.address);
  bool changed = false;
  for (const auto& [side, level] : read) {
    if (level <= 0) continue;
    const auto told = sides.contains(side) ? sides[side].told : Told::nothing;
    if (level >= warning + rearmMargin) {
      changed |= sides.erase(side) > 0;
    } else if (level <= critical && told != Told::critical) {
      sides[side] = {Told::critical, clock_.now()};
      changed = true;
      warn(device, side, level, true);
    } else if (level <= warning && told == Told::nothing) {
      sides[side] = {Told::warning, clock_.now()};
      changed = true;
      warn(device, side, level, false);
    }
  }
  if (!changed) return;
  save(device.address, sides);
  if (sides.empty()) unshown_.erase(device.address); // recovered: the tool tip tells no more
}

std::optional<std::string> LowBatteryWarnings::unshown(const std::string& address) const {
  auto found = unshown_.find(address);
  return found == unshown_.end() ? std::nullopt : std::optional(found->second);
}

void LowBatteryWarnings::forget(const std::string& address) {
  devices_.erase(address);
  shown_.erase(address);
  unshown_.erase(address);
  state_.removeValue(address);
}

// Read from the state file once a run: what was told within the hour before
// the start still counts as told.
LowBatteryWarnings::Sides& LowBatteryWarnings::sidesOf(const std::string& address) {
  if (auto found = devices_.find(address); found != devices_.end()) return found->second;
  Sides sides;
  const auto saved = state_.value(address);
  const auto* dictionary = saved ? saved->as<SettingsValue::Dictionary>() : nullptr;
  for (const auto& [side, value] : dictionary ? *dictionary : SettingsValue::Dictionary{}) {
    const auto* entry = value.as<SettingsValue::Dictionary>();
    if (!entry || !entry->contains(toldKey) || !entry->contains(atKey)) continue;
    const auto* told = entry->at(toldKey).as<std::string>();
    const auto* at = entry->at(atKey).as<double>();
    if (!told || !at) continue;
    const Date when = Date() + std::chrono::duration_cast<Date::duration>(Seconds(*at));
    if (timeBetween(when, clock_.now()) >= remembered) continue;
    sides[side] = {*told == "critical" ? Told::critical : Told::warning, when};
  }
  return devices_[address] = std::move(sides);
}

void LowBatteryWarnings::save(const std::string& address, const Sides& sides) {
  if (sides.empty()) {
    state_.removeValue(address);
    return;
  }
  SettingsValue::Dictionary saved;
  for (const auto& [side, state] : sides) {
    saved.insert_or_assign(
        side,
        SettingsValue::Dictionary{{toldKey, state.told == Told::critical ? "critical" : "warning"},
                                  {atKey, std::chrono::duration_cast<Seconds>(state.at.time_since_epoch()).count()}});
  }
  state_.setValue(address, std::move(saved));
}

void LowBatteryWarnings::warn(const Device& device, const std::string& side, int level, bool critical) {
  // The notification's first line, with the device's name and the level.
  const auto format = side == "left"    ? translatable("%1: left bud at %2 %")
                      : side == "right" ? translatable("%1: right bud at %2 %")
                                        : translatable("%1: battery at %2 %");
  const auto number = std::to_string(level);
  PXR_LOG(batteryInfoLog(),
          critical ? "Critical battery warning:" : "Low battery warning:", numbered(format, {device.name, number}));
  Notification notification{.summary = numbered(localized(format), {device.name, number}),
                            .body = critical ? localized("Charge it now: it will turn off soon.")
                                             : localized("Charge it soon."),
                            .png = device.picture ? device.picture() : std::vector<unsigned char>{},
                            .critical = critical};
  const auto& address = device.address;
  auto replacing = shown_.contains(address) ? shown_[address] : 0;
  notifications_.show(notification, replacing,
                      [this, address, summary = notification.summary](const Result<Notifications::Id>& shown) {
                        if (shown) {
                          shown_[address] = shown.value();
                          unshown_.erase(address);
                          return;
                        }
                        PXR_LOG_ERROR("No notification service showed the battery warning “" + summary +
                                      "”: " + shown.failure().reason);
                        unshown_[address] = summary;
                      });
}

} // namespace lb
