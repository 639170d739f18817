#include "core/DevicePresentation.h"

#include "core/BatteryType.h"
#include "core/ConnectionTracker.h"
#include "core/OutputFixer.h"
#include "core/Texts.h"

#include <algorithm>

namespace lb {

std::optional<SettingsValue::Dictionary> DevicePresentation::deviceCachedInfo(BatteryReading reading) {
  auto cached = deviceInfoCache_.cachedValue(&device_);
  if (cached && (cached->isCurrent() || reading == BatteryReading::lastKnown)) return cached->value;
  return storedFreshInfo();
}

// Every level read while connected goes into the history.
std::optional<SettingsValue::Dictionary> DevicePresentation::storedFreshInfo() {
  auto fresh = deviceFreshInfo();
  deviceInfoCache_.setValue(&device_, fresh);
  const auto levels = fresh ? BatteryType::from(*fresh) : std::nullopt;
  const auto address = options_.address();
  auto found = device_.device();
  if (levels && address && found && found->isConnected()) histories_.levelsRead(address->toString(), *levels);
  return fresh;
}

void DevicePresentation::watchBattery() {
  const auto interval = std::max(tunables_(tunable::DeviceInfoStalenessInterval), Seconds(1));
  batteryTimer_ = std::make_unique<PXRTimer>(interval, true, [this, weak = device_.lifetime()] {
    if (const auto alive = weak.lock()) readLevels();
  });
  batteryTimer_->schedule(loop_);
}

void DevicePresentation::readLevels() {
  if (tracker_.isConnected() != true) return;
  const auto fresh = storedFreshInfo();
  if (!warnsOfLowBattery()) return;
  const auto levels = fresh ? BatteryType::from(*fresh) : std::nullopt;
  const auto address = options_.address();
  if (!levels || !address) return;
  warnings_.levelsRead({address->toString(), device_.deviceNameOrUnknown(),
                        [this] {
                          auto picture = connectedImage();
                          return picture ? picture->png() : std::vector<unsigned char>{};
                        }},
                       *levels);
}

// Linux answers as the newest system: the battery sources. The older
// systems' preferences cache does not exist here, so switching the sources
// off leaves no information.
std::optional<SettingsValue::Dictionary> DevicePresentation::deviceFreshInfo() {
  auto found = device_.device();
  if (!found || tunables_(tunable::DisableMontereyBatteryInfo)) return std::nullopt;
  return batteryInfo_.fallbackInfo(*found);
}

const BatteryHistory* DevicePresentation::batteryHistory() {
  const auto address = options_.address();
  return address ? &histories_.of(address->toString()) : nullptr;
}

std::optional<std::string> DevicePresentation::timeLeftText() {
  auto found = device_.device();
  const auto* history = found && found->isConnected() ? batteryHistory() : nullptr;
  if (!history) return std::nullopt;
  return BatteryHistories::timeLeftText(history->timeLeft(loop_.now(), tunables_(tunable::BatteryEstimateMinimumSpan)));
}

std::optional<int> DevicePresentation::batteryLevel(BatteryReading reading) {
  auto info = deviceCachedInfo(reading);
  auto type = info ? BatteryType::from(*info) : std::nullopt;
  if (!type) return std::nullopt;
  if (type->kind != BatteryType::Kind::leftRight) return type->level;
  if (type->level != 0 && type->right != 0) return std::min(type->level, type->right);
  return std::max(type->level, type->right);
}

std::optional<std::string> DevicePresentation::batteryLevelFormat(BatteryReading reading) {
  auto info = deviceCachedInfo(reading);
  auto type = info ? BatteryType::from(*info) : std::nullopt;
  if (!type) return std::nullopt;
  if (type->kind != BatteryType::Kind::leftRight) return std::to_string(type->level) + "%%";
  std::string text;
  if (type->level != 0) text = localized("L") + ": " + std::to_string(type->level) + "%%";
  if (type->right != 0) text += (text.empty() ? "" : " ") + localized("R") + ": " + std::to_string(type->right) + "%%";
  return text;
}

std::string DevicePresentation::batteryLevelString(BatteryReading reading) {
  std::string text = localized("Unknown");
  auto found = device_.device();
  if (found && found->isConnected()) {
    if (auto format = batteryLevelFormat(reading)) text = *format;
  }
  return formatted("%@: " + text, localized("Battery Level"));
}

bool DevicePresentation::isNotTheOutput(bool connected) const {
  return connected && tunables_(tunable::EnableAudioOutput) && tracker_.isAudioOutput() == false &&
         tracker_.isPotentialAudioOutput() == true;
}

std::optional<std::string> DevicePresentation::statusString() {
  auto found = device_.device();
  if (!found) return std::nullopt;
  const bool connected = found->isConnected();
  std::string state = connected ? localized("Connected") : localized("Disconnected");
  if (outputFixer_.isRetrying()) state = localized("Fixing Sound Output");
  if (isNotTheOutput(connected)) state += localized(" (Not Sound Output)");
  return device_.deviceNameOrUnknown() + " - " + state;
}

std::optional<std::string> DevicePresentation::toolTipString() {
  auto status = statusString();
  if (!status) return std::nullopt;
  std::string text = *status + ".";
  auto found = device_.device();
  if (found && found->isConnected()) {
    text += "\n" + batteryLevelString();
    if (auto left = timeLeftText()) text += ", " + *left;
    text += ".";
  }
  const auto address = options_.address();
  if (auto warning = address ? warnings_.unshown(address->toString()) : std::nullopt) text += "\n" + *warning;
  return text;
}

std::string DevicePresentation::summaryString() {
  auto found = device_.device();
  if (!found) return localized("Not paired");
  if (!found->isConnected()) return localized("Disconnected");
  std::string text = localized("Connected");
  if (tracker_.isAudioOutput() == true) text += " · " + localized("sound output");
  if (isNotTheOutput(true)) text += " · " + localized("not the sound output");
  if (auto battery = batteryLevelFormat(BatteryReading::lastKnown)) {
    // "L: 60% R: 75%" kept on one line where the list wraps.
    auto levels = formatted(*battery, "");
    for (auto at = levels.find(' '); at != std::string::npos; at = levels.find(' ', at))
      levels.replace(at, 1, "\u00a0");
    text += " · " + levels;
  }
  return text;
}

std::shared_ptr<Image> DevicePresentation::image(bool connected) {
  const double fraction = tunables_(tunable::NotAudioOutputFraction);
  if (outputFixer_.isRetrying()) {
    if (!tunables_(tunable::ChangeIconWhileFixingAudioOutput)) return buttonImage(fraction);
    auto symbol = images_.named(connected ? "refresh-freestanding" : "refresh");
    if (symbol) symbol->setTemplate(true);
    return symbol;
  }
  if (!connected) return disconnectedImage();
  return buttonImage(isNotTheOutput(true) ? fraction : 1.0);
}

std::shared_ptr<Image> DevicePresentation::buttonImage(double fraction) {
  if (options_.showBatteryLevel()) {
    if (auto level = batteryLevel()) {
      const bool low = *level <= tunables_(tunable::LowBatteryWarningLevel);
      return lb::image(images_, options_.icon(), *level, low, fraction);
    }
  }
  return lb::connectedImage(images_, options_.icon(), fraction);
}

std::shared_ptr<Image> DevicePresentation::disconnectedImage() {
  auto outline = images_.named(std::string(rawValue(options_.icon())));
  if (outline) outline->setTemplate(true);
  return outline;
}

std::shared_ptr<Image> DevicePresentation::connectedImage() { return lb::connectedImage(images_, options_.icon()); }

} // namespace lb
