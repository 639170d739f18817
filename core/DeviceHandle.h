#pragma once

#include "core/BluetoothMatchable.h"

#include <memory>
#include <string>

namespace lb {

// What the parts of a device setting know of the setting itself: the
// device and its names, a lifetime to hold while work outlives a call, and
// the two ways back to the picture. Each part gets this, the options and
// the few sibling parts it works with; none gets the whole setting.
class DeviceHandle : public BluetoothMatchable {
public:
  // The device's name, or its address, or "unknown (nil)": for log lines
  // and alerts.
  virtual std::string deviceNameOrUnknown() const = 0;
  // Locked by closures that must keep the setting, and so its parts, alive
  // until they have run; held weakly by timers and observers, which must
  // not keep a removed device alive.
  virtual std::weak_ptr<const void> lifetime() const = 0;
  // The picture, the menu or an outside mirror may show something else now.
  virtual void updateButtonImage() = 0;
  // A connection attempt is over: the spinner stops and the picture follows.
  virtual void stopProgress() = 0;
};

} // namespace lb
