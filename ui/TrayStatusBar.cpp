#include "ui/TrayStatusBar.h"

#include "ui/StatusNotifierItem.h"
#include "ui/StatusNotifierRegistrar.h"
#include "ui/TrayStatusItem.h"

namespace lb {

TrayStatusBar::TrayStatusBar(TrayHost::Kind host, Notifications& notifications)
    : notifications_(notifications), panel_(QDBusConnection::sessionBus()) {
  if (host == TrayHost::Kind::statusNotifierItem) {
    registrar_ = std::make_unique<StatusNotifierRegistrar>(QDBusConnection::sessionBus());
  }
}

TrayStatusBar::~TrayStatusBar() = default;

void TrayStatusBar::setPaint(const TrayPaint& paint) {
  const QColor chosen(QString::fromStdString(paint.colour));
  colour_ = chosen.isValid() ? chosen : QColor(Qt::black);
  // The halo is the other tone: white about dark pictures, black about light ones.
  halo_ = paint.halo ? std::optional(colour_.lightness() < 128 ? QColor(Qt::white) : QColor(Qt::black)) : std::nullopt;
  for (auto* item : items_) item->redraw();
}

std::unique_ptr<StatusItem> TrayStatusBar::createStatusItem(double, const std::string& identity) {
  std::unique_ptr<PaintedStatusItem> item;
  if (registrar_) {
    item = std::make_unique<StatusNotifierItem>(*this, *registrar_, QString::fromStdString(identity), ++created_);
  } else {
    item = std::make_unique<TrayStatusItem>(*this);
  }
  items_.push_back(item.get());
  return item;
}

void TrayStatusBar::forget(PaintedStatusItem* item) { std::erase(items_, item); }

} // namespace lb
