#pragma once

#include <cstdint>
#include <optional>

namespace lb {

class StatusItem;

// Whether the program has a taskbar presence of its own.
enum class ActivationPolicy { regular, accessory };

// The program's windows and its place on the desktop.
class Windows {
public:
  virtual ~Windows() = default;
  // Shows the preferences window, at the device with this ID when one is
  // given, and raises it when it is open already; false when the window
  // cannot be made.
  virtual bool showPreferences(std::optional<std::int64_t> deviceID) = 0;
  // The one-time welcome under a tray item; false when it cannot be shown.
  virtual bool showLandingPopover(StatusItem& item) = 0;
  virtual void setActivationPolicy(ActivationPolicy policy) = 0;
  // Asks the event loop to end; termination follows from there.
  virtual void terminate() = 0;
};

} // namespace lb
