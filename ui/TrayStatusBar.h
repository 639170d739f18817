#pragma once

#include "ports/Notifications.h"
#include "ports/StatusBar.h"
#include "ui/PanelWatcher.h"
#include "ui/TrayHost.h"
#include "ui/TrayMetrics.h"

#include <QColor>

#include <memory>
#include <optional>
#include <vector>

namespace lb {

class StatusNotifierRegistrar;

// A tray item drawn from the program's pictures, in the tray's paint.
class PaintedStatusItem : public StatusItem {
public:
  // Draws the picture again, as when the paint changed.
  virtual void redraw() = 0;
};

// The desktop's tray: StatusNotifierItems of our own where the session has
// a watcher, Qt's XEmbed icons elsewhere. A tray host does not tell its
// panel's colour; what the desktop says of it is read here, and the paint
// chosen from it comes back through setPaint.
class TrayStatusBar final : public StatusBar {
public:
  // An item's messages go out through `notifications`.
  TrayStatusBar(TrayHost::Kind host, Notifications& notifications);
  ~TrayStatusBar() override;

  double thickness() const override { return trayMetrics::thickness; }
  std::unique_ptr<StatusItem> createStatusItem(double length, const std::string& identity) override;
  PanelSignals panelSignals() const override { return panel_.read(); }
  void watchPanel(std::function<void()> changed) override { panel_.onChange(std::move(changed)); }
  void setPaint(const TrayPaint& paint) override;

  // The pictures' colour, and the halo's where there is one.
  QColor colour() const { return colour_; }
  std::optional<QColor> halo() const { return halo_; }
  // An item leaving the tray.
  void forget(PaintedStatusItem* item);
  Notifications& notifications() { return notifications_; }

private:
  Notifications& notifications_;
  PanelWatcher panel_;
  QColor colour_{Qt::black};
  std::optional<QColor> halo_;
  std::unique_ptr<StatusNotifierRegistrar> registrar_; // none for an XEmbed tray
  std::vector<PaintedStatusItem*> items_;
  int created_ = 0;
};

} // namespace lb
