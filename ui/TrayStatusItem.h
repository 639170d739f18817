#pragma once

#include "ui/TrayMenu.h"
#include "ui/TrayPicture.h"
#include "ui/TrayStatusBar.h"

#include <QSystemTrayIcon>

#include <functional>

namespace lb {

// A device's icon in an XEmbed tray, where the desktop has no
// StatusNotifierItem host. A left and a middle click are reported; a right
// click shows the menu.
class TrayStatusItem final : public PaintedStatusItem {
public:
  explicit TrayStatusItem(TrayStatusBar& bar);
  ~TrayStatusItem() override;

  void setAccessibilityLabel(const std::optional<std::string>& label) override;
  void setImage(std::shared_ptr<Image> image) override { picture_.setImage(std::move(image)); }
  std::shared_ptr<Image> image() const override { return picture_.image(); }
  void setToolTip(const std::optional<std::string>& text) override;
  void setBusy(bool busy) override { picture_.setBusy(busy); }
  void setMenu(std::vector<StatusMenuEntry> entries) override;
  void popUpMenu() override { menu_.popUp(); }
  bool canPopUpMenu() const override { return TrayMenu::canPopUp(); }
  void setClickHandler(ClickHandler handler) override { onClick_ = std::move(handler); }
  bool showMessage(const std::string& title, const std::string& text) override;

  void redraw() override { picture_.redraw(); }

private:
  void setIcon(const QIcon& icon);

  TrayStatusBar& bar_;
  QSystemTrayIcon icon_;
  TrayMenu menu_;
  TrayPicture picture_;
  ClickHandler onClick_;
};

} // namespace lb
