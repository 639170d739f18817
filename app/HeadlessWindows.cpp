#include "app/HeadlessWindows.h"

#include "core/LogAreas.h"
#include "ports/StatusBar.h"

#include <QCoreApplication>
#include <QMetaObject>

namespace lb {

bool HeadlessWindows::showPreferences() {
  PXR_LOG(trayLog(), "The preferences window would open here; lanternbud-ctl lists and drives the devices.");
  return false;
}

bool HeadlessWindows::showLandingPopover(StatusItem& item) {
  return item.showMessage("Lanternbud is in your tray",
                          "Click a device's icon to connect or disconnect it. Right-click it for its menu.");
}

// Queued: the caller finishes its work before the loop ends.
void HeadlessWindows::terminate() {
  QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit, Qt::QueuedConnection);
}

} // namespace lb
