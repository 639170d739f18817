#pragma once

#include "ports/Images.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lb {

// A click on a tray item: which button, and whether Control was held.
struct StatusItemClick {
  enum class Button { left, right, middle };
  Button button = Button::left;
  bool control = false;
};

// An entry of a tray item's menu.
struct StatusMenuEntry {
  // Read each time the menu opens; an entry without one is a separator.
  std::function<std::string()> title;
  // What choosing the entry does; without one the entry is a line of text.
  std::function<void()> action;
};

// One device's item in the tray; destroying it removes it from the tray.
class StatusItem {
public:
  using ClickHandler = std::function<void(const StatusItemClick&)>;

  virtual ~StatusItem() = default;
  virtual void setAccessibilityLabel(const std::optional<std::string>& label) = 0;
  // The picture core chose; none clears it.
  virtual void setImage(std::shared_ptr<Image> image) = 0;
  virtual std::shared_ptr<Image> image() const = 0;
  virtual void setToolTip(const std::optional<std::string>& text) = 0;
  // While busy the item shows a spinner in place of its picture.
  virtual void setBusy(bool busy) = 0;
  // The menu the item opens; the tray host shows it on a right click.
  virtual void setMenu(std::vector<StatusMenuEntry> entries) = 0;
  // Opens the menu from the item, where the platform can place it.
  virtual void popUpMenu() = 0;
  // Whether popUpMenu can show the menu; a Wayland client cannot place one.
  virtual bool canPopUpMenu() const = 0;
  // Where the item reports clicks; main thread.
  virtual void setClickHandler(ClickHandler handler) = 0;
  // A passing message from the item; false when it cannot be shown.
  virtual bool showMessage(const std::string& title, const std::string& text) = 0;
};

// What the desktop says of the panel the tray sits in, from the most
// specific signal to the least; each unknown while the desktop is silent.
struct PanelSignals {
  enum class Scheme { noPreference, preferDark, preferLight };
  bool gnomeShell = false;            // its top bar is always dark
  std::optional<bool> xfcePanelDark;  // Xfce's panel "dark-mode"
  std::optional<bool> plasmaDark;     // Plasma's colours, as its theme gives them
  std::optional<Scheme> portalScheme; // the desktop portal's colour scheme
  std::optional<bool> paletteDark;    // a colour theme's palette, where one is set
};

// How the tray's pictures are drawn: in a colour (a name or "#rrggbb"),
// with a thin halo of the opposite tone where the panel's is unknown.
struct TrayPaint {
  std::string colour;
  bool halo = false;
  bool operator==(const TrayPaint&) const = default;
};

class StatusBar {
public:
  virtual ~StatusBar() = default;
  // What the desktop says now; `changed` is told whenever it may have
  // changed (a new colour scheme, a new panel setting).
  virtual PanelSignals panelSignals() const = 0;
  virtual void watchPanel(std::function<void()> changed) = 0;
  // Draws every item again in that paint.
  virtual void setPaint(const TrayPaint& paint) = 0;
  // The tray's icon size, in points.
  virtual double thickness() const = 0;
  // `identity` is the item's name to the tray host, which remembers by it
  // whether the user hid the item: stable across sessions, one per device.
  virtual std::unique_ptr<StatusItem> createStatusItem(double length, const std::string& identity) = 0;
};

} // namespace lb
