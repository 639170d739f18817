#include "ui/TrayStatusBar.h"

#include "ui/StatusNotifierItem.h"
#include "ui/StatusNotifierRegistrar.h"
#include "ui/TrayStatusItem.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace lb {

TrayStatusBar::TrayStatusBar(TrayHost::Kind host, ColourSetting setting) : setting_(std::move(setting)) {
  if (host == TrayHost::Kind::statusNotifierItem) {
    registrar_ = std::make_unique<StatusNotifierRegistrar>(QDBusConnection::sessionBus());
  }
  QGuiApplication::instance()->installEventFilter(this);
}

TrayStatusBar::~TrayStatusBar() { QGuiApplication::instance()->removeEventFilter(this); }

QColor TrayStatusBar::colour() const {
  const QColor chosen(QString::fromStdString(setting_()));
  if (chosen.isValid()) return chosen;
  return QGuiApplication::palette().color(QPalette::WindowText);
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

bool TrayStatusBar::eventFilter(QObject* watched, QEvent* event) {
  if (watched == QGuiApplication::instance() && event->type() == QEvent::ApplicationPaletteChange) {
    for (auto* item : items_) item->redraw();
  }
  return false;
}

} // namespace lb
