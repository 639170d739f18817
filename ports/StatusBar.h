#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lb {

// What a device's tray item shows. Core decides it; the tray draws it.
struct StatusItemAppearance {
  std::string iconName; // the icon option's raw value
  // The connected (filled) picture, else the outline one; with the refresh
  // symbol, which of its two forms.
  bool connected = false;
  // Below 1 while connected but not the sound output, and while the output
  // is being fixed.
  double opacity = 1.0;
  // The battery gauge beside the picture, when the user asked for it and a
  // level is known.
  std::optional<int> batteryLevel;
  // A refresh symbol in place of the picture while the output is being fixed.
  bool refreshSymbol = false;
  std::optional<std::string> toolTip;

  bool operator==(const StatusItemAppearance&) const = default;
};

// A click on a tray item: which button, and whether Control was held.
struct StatusItemClick {
  enum class Button { left, right, middle };
  Button button = Button::left;
  bool control = false;
};

// One device's item in the tray; destroying it removes it from the tray.
class StatusItem {
public:
  using ClickHandler = std::function<void(const StatusItemClick&)>;

  virtual ~StatusItem() = default;
  virtual void setAccessibilityLabel(const std::optional<std::string>& label) = 0;
  virtual void setAppearance(const StatusItemAppearance& appearance) = 0;
  // While busy the item shows a spinner and takes no clicks.
  virtual void setBusy(bool busy) = 0;
  // Opens the device's menu from the item.
  virtual void popUpMenu() = 0;
  // Where the item reports clicks; main thread.
  virtual void setClickHandler(ClickHandler handler) = 0;
};

class StatusBar {
public:
  virtual ~StatusBar() = default;
  // The tray's icon size, in points.
  virtual double thickness() const = 0;
  virtual std::unique_ptr<StatusItem> createStatusItem(double length) = 0;
};

} // namespace lb
