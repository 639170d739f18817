#pragma once

#include "core/BatteryHistories.h"
#include "core/BatteryInfo.h"
#include "core/DeviceHandle.h"
#include "core/DeviceOptions.h"
#include "core/LowBatteryWarnings.h"
#include "core/MenuBarIconOption.h"
#include "core/Services.h"
#include "core/Tunables.h"
#include "foundation/PXRTimer.h"
#include "ports/EventLoop.h"
#include "ports/Images.h"

#include <memory>
#include <optional>
#include <string>

namespace lb {

class ConnectionTracker;
class OutputFixer;

// How a battery value is had: read afresh once the cached one is stale, or
// the last one known, read only when none is (for mirrors that must not
// cause reads of their own).
enum class BatteryReading { ifStale, lastKnown };

// What the user sees of a device: battery levels, the status texts of the
// menu, tool tip and scripts, and the choice of the tray picture. Main
// thread.
class DevicePresentation {
public:
  DevicePresentation(const DeviceHandle& device, const DeviceOptions& options, const ConnectionTracker& tracker,
                     const OutputFixer& outputFixer, EventLoop& loop, const Tunables& tunables,
                     BatteryInfo& batteryInfo, DeviceInfoCache& deviceInfoCache, LowBatteryWarnings& warnings,
                     BatteryHistories& histories, Images& images)
      : device_(device), options_(options), tracker_(tracker), outputFixer_(outputFixer), loop_(loop),
        tunables_(tunables), batteryInfo_(batteryInfo), deviceInfoCache_(deviceInfoCache), warnings_(warnings),
        histories_(histories), images_(images) {}

  // Reads the levels afresh every "DeviceInfoStalenessInterval" while the
  // device is connected, for its history and to warn of a low battery,
  // where its user wants it.
  void watchBattery();
  bool warnsOfLowBattery() const { return options_.warnsOfLowBattery(warnings_.onByDefault()); }

  // The device's information, reused for "DeviceInfoStalenessInterval".
  std::optional<SettingsValue::Dictionary> deviceCachedInfo(BatteryReading reading = BatteryReading::ifStale);
  std::optional<SettingsValue::Dictionary> deviceFreshInfo();
  // The levels read so far; none for a device without an address.
  const BatteryHistory* batteryHistory();
  // "about 5 hours left", while connected and steadily discharging.
  std::optional<std::string> timeLeftText();
  // One level; of two earbuds the lower one that is not zero.
  std::optional<int> batteryLevel(BatteryReading reading = BatteryReading::ifStale);
  // The battery text with its percent signs doubled, "85%%" or "L: 40%% R: 70%%".
  std::optional<std::string> batteryLevelFormat(BatteryReading reading = BatteryReading::ifStale);
  // "Battery Level: 85%", or "Battery Level: Unknown"
  std::string batteryLevelString(BatteryReading reading = BatteryReading::ifStale);
  // "Headphones - Connected (Not Sound Output)"
  std::optional<std::string> statusString();
  // The status and, while connected, the battery with the time left, on
  // two lines; a third
  // with a warning that no notification service showed.
  std::optional<std::string> toolTipString();
  // What the settings list says under the name, from what is known without
  // asking the device: "Connected · sound output · L: 60% R: 75%",
  // "Disconnected", "Not paired".
  std::string summaryString();

  // The tray picture for a device known to be connected or not: the
  // outline while disconnected; the filled one, dimmed while it is not the
  // sound output, with the battery gauge when asked for; while the output
  // is being fixed, dimmed or the refresh symbol. None for missing artwork.
  std::shared_ptr<Image> image(bool connected);
  // The filled picture at that opacity, with the gauge when asked for.
  std::shared_ptr<Image> buttonImage(double fraction);
  // The outline picture, and the filled one.
  std::shared_ptr<Image> disconnectedImage();
  std::shared_ptr<Image> connectedImage();

private:
  // Connected but could be, and is not, the sound output.
  bool isNotTheOutput(bool connected) const;
  // Read now, and kept for the pictures and texts that follow.
  std::optional<SettingsValue::Dictionary> storedFreshInfo();
  void readLevels();

  const DeviceHandle& device_;
  const DeviceOptions& options_;
  const ConnectionTracker& tracker_;
  const OutputFixer& outputFixer_;
  EventLoop& loop_;
  const Tunables& tunables_;
  BatteryInfo& batteryInfo_;
  DeviceInfoCache& deviceInfoCache_;
  LowBatteryWarnings& warnings_;
  BatteryHistories& histories_;
  Images& images_;
  std::unique_ptr<PXRTimer> batteryTimer_;
};

} // namespace lb
