#pragma once

#include <memory>
#include <optional>
#include <string>

namespace lb {

// What a device's tray item shows. The tray draws it; core only decides it.
struct StatusItemAppearance {
  std::string iconName; // the icon option's raw value
  bool connected = false;

  bool operator==(const StatusItemAppearance&) const = default;
};

// One device's item in the tray; destroying it removes it from the tray.
class StatusItem {
public:
  virtual ~StatusItem() = default;
  virtual void setAccessibilityLabel(const std::optional<std::string>& label) = 0;
  virtual void setAppearance(const StatusItemAppearance& appearance) = 0;
  // While busy the item shows a spinner and takes no clicks.
  virtual void setBusy(bool busy) = 0;
  // Opens the device's menu from the item.
  virtual void popUpMenu() = 0;
};

class StatusBar {
public:
  virtual ~StatusBar() = default;
  // The tray's icon size, in points.
  virtual double thickness() const = 0;
  virtual std::unique_ptr<StatusItem> createStatusItem(double length) = 0;
};

} // namespace lb
