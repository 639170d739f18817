#pragma once

#include "ports/StatusBar.h"

#include <QMenu>

#include <vector>

namespace lb {

// A device's menu as a Qt menu: the XEmbed tray's, and the one a click
// places at the pointer. The titles are read as it opens.
class TrayMenu {
public:
  TrayMenu();

  void setEntries(std::vector<StatusMenuEntry> entries);
  void setAccessibleName(const QString& name);
  QMenu* menu() { return &menu_; }
  // A Wayland client cannot place a window at the pointer.
  static bool canPopUp();
  // At the pointer, where the platform allows; said in the log elsewhere.
  void popUp();

private:
  void refreshTitles();

  QMenu menu_;
  std::vector<StatusMenuEntry> entries_;
  std::vector<QAction*> actions_; // one per entry
};

} // namespace lb
