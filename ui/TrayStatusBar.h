#pragma once

#include "ports/StatusBar.h"

#include <QColor>
#include <QObject>

#include <functional>
#include <vector>

namespace lb {

class TrayStatusItem;

// The desktop's tray. Its pictures are drawn in the panel's text colour,
// which a StatusNotifierItem host does not tell: the application palette
// (which follows the desktop's theme) stands for it, unless the user named
// a colour. A change of palette redraws every item.
class TrayStatusBar final : public QObject, public StatusBar {
public:
  // The user's colour ("#ffffff", "white"), empty to follow the palette.
  using ColourSetting = std::function<std::string()>;
  explicit TrayStatusBar(ColourSetting setting);
  ~TrayStatusBar() override;

  double thickness() const override { return 22.0; }
  std::unique_ptr<StatusItem> createStatusItem(double length) override;
  QColor colour() const;
  // An item leaving the tray.
  void forget(TrayStatusItem* item);

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  ColourSetting setting_;
  std::vector<TrayStatusItem*> items_;
};

} // namespace lb
