#pragma once

#include "core/ShortcutBinder.h"
#include "core/Tunables.h"
#include "ports/StatusBar.h"
#include "ports/Windows.h"

#include <memory>

namespace lb {

class DeviceSetting;

// A device's item in the tray, its menu and its keyboard shortcut:
// creating and removing them, showing the picture core chose, the spinner
// while a connection is made, and which clicks open the menu. Main thread.
class DeviceStatusItem {
public:
  DeviceStatusItem(DeviceSetting& owner, StatusBar& statusBar, Windows& windows, ShortcutBinder& shortcuts,
                   const Tunables& tunables)
      : owner_(owner), statusBar_(statusBar), windows_(windows), shortcuts_(shortcuts), tunables_(tunables) {}

  StatusItem* item() const { return item_.get(); }
  bool showsProgress() const { return showsProgress_; }

  // Creates the item with its menu and binds the shortcut. Clicks and
  // shortcut presses enter the device setting's toggle.
  void create();
  void remove();

  // Draws the picture for the observed state, unless the spinner shows.
  void update();
  // The spinner; the owner redraws when it stops.
  void startProgress();
  void stopProgress();

  // Whether a click opens the device menu instead of toggling: Control or
  // the right (or middle) button always; in connect-only mode, a click that
  // would disconnect.
  bool shouldShowMenu(const StatusItemClick& click) const;
  // The menu for that click; where no menu can be placed (Wayland), the
  // middle click opens the device's settings instead.
  void popUpMenu(const StatusItemClick& click);

  // The name the tray host knows the item by: from the device's address.
  std::string identity() const;

private:
  // What the menu offers first, from the state.
  enum class Offer { nothing, connect, disconnect, soundOutput, connecting, disconnecting };
  Offer offer() const;
  // The offer, the status line, the battery line, "Settings…" and "Quit".
  std::vector<StatusMenuEntry> deviceMenu(Offer offer);
  // Gives the item its menu again when what it offers changed.
  void updateMenu();

  DeviceSetting& owner_;
  StatusBar& statusBar_;
  Windows& windows_;
  ShortcutBinder& shortcuts_;
  const Tunables& tunables_;
  std::unique_ptr<StatusItem> item_;
  bool showsProgress_ = false;
  Offer offered_ = Offer::nothing;
};

} // namespace lb
