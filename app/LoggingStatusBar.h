#pragma once

#include "ports/StatusBar.h"
#include "ui/TrayMetrics.h"

namespace lb {

// The tray until there is one: each item logs what it would show, to the
// area "LogTray".
class LoggingStatusBar final : public StatusBar {
public:
  double thickness() const override { return trayMetrics::thickness; }
  // Nobody sees these pictures: any paint will do.
  PanelSignals panelSignals() const override { return {}; }
  void watchPanel(std::function<void()>) override {}
  void setPaint(const TrayPaint&) override {}
  std::unique_ptr<StatusItem> createStatusItem(double length, const std::string& identity) override;

private:
  int created_ = 0;
};

} // namespace lb
