#pragma once

#include "core/BatteryType.h"
#include "core/Tunables.h"
#include "foundation/Clock.h"
#include "foundation/SettingsStore.h"
#include "ports/DesktopSettings.h"
#include "ports/Notifications.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lb {

// Warns through the desktop's notifications before a device's battery runs
// out: once at or below "LowBatteryWarningLevel", once more, urgently, at or
// below "LowBatteryCriticalLevel", for each side of a pair of earbuds, and
// not again until the level has risen to the warning level plus 5. What the
// user was told is kept in a state file, so that a restart within the hour
// does not tell it again. Main thread.
class LowBatteryWarnings {
public:
  // Who a warning is about. The picture is drawn only for a warning.
  struct Device {
    std::string address; // canonical: the state's key
    std::string name;
    std::function<std::vector<unsigned char>()> picture;
  };

  // The hysteresis above the warning level.
  static constexpr int rearmMargin = 5;
  // How long a warning given before a restart still counts as given.
  static constexpr Seconds remembered{3600};

  LowBatteryWarnings(Notifications& notifications, SettingsStore& state, const DesktopSettings& desktop,
                     const Tunables& tunables, const Clock& clock)
      : notifications_(notifications), state_(state), desktop_(desktop), tunables_(tunables), clock_(clock) {}

  // Whether a device whose user has not chosen warns: not where the
  // desktop's power daemon does already, so that nobody is told twice.
  bool onByDefault() const { return !desktop_.warnsOfLowBattery(); }

  // Levels read from a connected device whose warnings are on. A side at 0
  // is absent (a bud in its case) and changes nothing.
  void levelsRead(const Device& device, const BatteryType& levels);
  // The last warning about the device that no notification service showed.
  std::optional<std::string> unshown(const std::string& address) const;
  // A removed device: what it was told goes, from the state file too.
  void forget(const std::string& address);

private:
  enum class Told { nothing, warning, critical };
  struct Side {
    Told told = Told::nothing;
    Date at{};
  };
  using Sides = std::map<std::string, Side>;

  Sides& sidesOf(const std::string& address);
  void save(const std::string& address, const Sides& sides);
  void warn(const Device& device, const std::string& side, int level, bool critical);

  Notifications& notifications_;
  SettingsStore& state_;
  const DesktopSettings& desktop_;
  const Tunables& tunables_;
  const Clock& clock_;
  std::map<std::string, Sides> devices_;
  std::map<std::string, Notifications::Id> shown_;
  std::map<std::string, std::string> unshown_;
};

} // namespace lb
