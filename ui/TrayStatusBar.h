#pragma once

#include "ports/StatusBar.h"
#include "ui/TrayHost.h"

#include <QColor>
#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace lb {

class StatusNotifierRegistrar;

// A tray item drawn from the program's pictures, in the panel's colour.
class PaintedStatusItem : public StatusItem {
public:
  // Draws the picture again, as when the panel's colour changed.
  virtual void redraw() = 0;
};

// The desktop's tray: StatusNotifierItems of our own where the session has
// a watcher, Qt's XEmbed icons elsewhere. The pictures are drawn in the
// panel's text colour, which a StatusNotifierItem host does not tell: the
// application palette (which follows the desktop's theme) stands for it,
// unless the user named a colour. A change of palette redraws every item.
class TrayStatusBar final : public QObject, public StatusBar {
public:
  // The user's colour ("#ffffff", "white"), empty to follow the palette.
  using ColourSetting = std::function<std::string()>;
  TrayStatusBar(TrayHost::Kind host, ColourSetting setting);
  ~TrayStatusBar() override;

  double thickness() const override { return 22.0; }
  std::unique_ptr<StatusItem> createStatusItem(double length, const std::string& identity) override;
  QColor colour() const;
  // An item leaving the tray.
  void forget(PaintedStatusItem* item);

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  ColourSetting setting_;
  std::unique_ptr<StatusNotifierRegistrar> registrar_; // none for an XEmbed tray
  std::vector<PaintedStatusItem*> items_;
  int created_ = 0;
};

} // namespace lb
