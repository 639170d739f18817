#include "ui/TrayStatusBar.h"

#include "ui/TrayStatusItem.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace lb {

TrayStatusBar::TrayStatusBar(ColourSetting setting) : setting_(std::move(setting)) {
  QGuiApplication::instance()->installEventFilter(this);
}

TrayStatusBar::~TrayStatusBar() { QGuiApplication::instance()->removeEventFilter(this); }

QColor TrayStatusBar::colour() const {
  const QColor chosen(QString::fromStdString(setting_()));
  if (chosen.isValid()) return chosen;
  return QGuiApplication::palette().color(QPalette::WindowText);
}

std::unique_ptr<StatusItem> TrayStatusBar::createStatusItem(double) {
  auto item = std::make_unique<TrayStatusItem>(*this);
  items_.push_back(item.get());
  return item;
}

void TrayStatusBar::forget(TrayStatusItem* item) { std::erase(items_, item); }

bool TrayStatusBar::eventFilter(QObject* watched, QEvent* event) {
  if (watched == QGuiApplication::instance() && event->type() == QEvent::ApplicationPaletteChange) {
    for (auto* item : items_) item->redraw();
  }
  return false;
}

} // namespace lb
