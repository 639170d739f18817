#pragma once

#include "ports/StatusBar.h"
#include "ui/Spinner.h"
#include "ui/TrayImage.h"

#include <QMenu>
#include <QSystemTrayIcon>

#include <functional>

namespace lb {

class TrayStatusBar;

// A device's item in the desktop's tray: a StatusNotifierItem whose menu
// goes over dbusmenu where the session has a watcher, an XEmbed icon
// elsewhere (Qt's choice). A left click (or the host's Activate) and a
// middle click are reported; a right click is the host's: it shows the menu.
class TrayStatusItem final : public StatusItem {
public:
  explicit TrayStatusItem(TrayStatusBar& bar);
  ~TrayStatusItem() override;

  void setAccessibilityLabel(const std::optional<std::string>& label) override;
  void setImage(std::shared_ptr<Image> image) override;
  std::shared_ptr<Image> image() const override { return image_; }
  void setToolTip(const std::optional<std::string>& text) override;
  void setBusy(bool busy) override;
  void setMenu(std::vector<StatusMenuEntry> entries) override;
  void popUpMenu() override;
  void setClickHandler(ClickHandler handler) override { onClick_ = std::move(handler); }
  bool showMessage(const std::string& title, const std::string& text) override;

  // Draws the picture again, as when the panel's colour changed.
  void redraw();

private:
  void show();
  void setIcon(const QIcon& icon);
  void refreshMenuTitles();

  TrayStatusBar& bar_;
  QSystemTrayIcon icon_;
  QMenu menu_;
  std::vector<StatusMenuEntry> entries_;
  std::vector<QAction*> actions_; // one per entry
  std::shared_ptr<TrayImage> image_;
  QString shownKey_; // what the icon now shows, with its colour
  Spinner spinner_;
  ClickHandler onClick_;
};

} // namespace lb
