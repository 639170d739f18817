#pragma once

#include "core/DeviceCommands.h"
#include "core/DeviceHandle.h"
#include "core/DeviceOptions.h"
#include "core/ShortcutBinder.h"
#include "core/Tunables.h"
#include "ports/StatusBar.h"
#include "ports/Windows.h"

#include <memory>

namespace lb {

class ConnectionControl;
class ConnectionTracker;
class DevicePresentation;

// A device's item in the tray, its menu and its keyboard shortcut:
// creating and removing them, showing the picture core chose, the spinner
// while a connection is made, and which clicks open the menu. Main thread.
class DeviceStatusItem {
public:
  DeviceStatusItem(const DeviceHandle& device, const DeviceOptions& options, DeviceCommands& commands,
                   const ConnectionTracker& tracker, const ConnectionControl& connection,
                   DevicePresentation& presentation, StatusBar& statusBar, Windows& windows, ShortcutBinder& shortcuts,
                   const Tunables& tunables)
      : device_(device), options_(options), commands_(commands), tracker_(tracker), connection_(connection),
        presentation_(presentation), statusBar_(statusBar), windows_(windows), shortcuts_(shortcuts),
        tunables_(tunables) {}

  StatusItem* item() const { return item_.get(); }
  bool showsProgress() const { return showsProgress_; }

  // Creates the item with its menu and binds the shortcut. Clicks, menu
  // choices and shortcut presses become the device's commands.
  void create();
  void remove();

  // Draws the picture for the observed state, unless the spinner shows.
  void update();
  // The spinner; the owner redraws when it stops.
  void startProgress();
  void stopProgress();

  // Whether a click opens the device menu instead of toggling: Control or
  // the right (or middle) button always; a click that would disconnect
  // where connect-only mode refuses it.
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

  const DeviceHandle& device_;
  const DeviceOptions& options_;
  DeviceCommands& commands_;
  const ConnectionTracker& tracker_;
  const ConnectionControl& connection_;
  DevicePresentation& presentation_;
  StatusBar& statusBar_;
  Windows& windows_;
  ShortcutBinder& shortcuts_;
  const Tunables& tunables_;
  std::unique_ptr<StatusItem> item_;
  bool showsProgress_ = false;
  Offer offered_ = Offer::nothing;
};

} // namespace lb
