#include "ui/DesktopWindows.h"

#include "core/AppDelegate.h"
#include "core/LogAreas.h"
#include "core/Texts.h"
#include "ports/StatusBar.h"
#include "ui/PreferencesWindow.h"

#include <QCoreApplication>
#include <QMetaObject>

namespace lb {

DesktopWindows::DesktopWindows(bool display) : display_(display) {}

DesktopWindows::~DesktopWindows() = default;

void DesktopWindows::attach(AppDelegate& app, Services& services, DiagnosticReporter& reporter) {
  app_ = &app;
  services_ = &services;
  reporter_ = &reporter;
}

void DesktopWindows::detach() {
  window_.reset();
  app_ = nullptr;
}

bool DesktopWindows::showPreferences(std::optional<std::int64_t> deviceID) {
  auto* registry = app_ ? app_->deviceSettingManager() : nullptr;
  if (!display_ || !registry) {
    PXR_LOG(trayLog(), "No display for the preferences window; lanternbud-ctl lists, adds and drives the devices.");
    return false;
  }
  if (!window_) window_ = std::make_unique<PreferencesWindow>(*registry, *services_, *reporter_);
  window_->present(deviceID);
  return true;
}

bool DesktopWindows::showLandingPopover(StatusItem& item) {
  return item.showMessage(localized("Lanternbud is in your tray"),
                          localized("Click a device's icon to connect or disconnect it. Right-click it for its menu."));
}

// Queued: the caller finishes its work before the loop ends.
void DesktopWindows::terminate() {
  QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit, Qt::QueuedConnection);
}

} // namespace lb
