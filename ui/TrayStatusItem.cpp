#include "ui/TrayStatusItem.h"

namespace lb {

TrayStatusItem::TrayStatusItem(TrayStatusBar& bar)
    : bar_(bar), picture_(bar, TrayImage::standardHeights(), [this](const QIcon& icon) { setIcon(icon); }) {
  icon_.setContextMenu(menu_.menu());
  QObject::connect(&icon_, &QSystemTrayIcon::activated, [this](QSystemTrayIcon::ActivationReason reason) {
    if (!onClick_) return;
    // Qt reports no modifier keys with a click; the middle button stands
    // in for Control-click.
    if (reason == QSystemTrayIcon::Trigger) onClick_({StatusItemClick::Button::left, false});
    if (reason == QSystemTrayIcon::MiddleClick) onClick_({StatusItemClick::Button::middle, false});
  });
}

TrayStatusItem::~TrayStatusItem() {
  icon_.hide();
  bar_.forget(this);
}

void TrayStatusItem::setAccessibilityLabel(const std::optional<std::string>& label) {
  menu_.setAccessibleName(QString::fromStdString(label.value_or("")));
}

// The item enters the tray with its first picture.
void TrayStatusItem::setIcon(const QIcon& icon) {
  icon_.setIcon(icon);
  if (!icon.isNull() && !icon_.isVisible()) icon_.show();
}

void TrayStatusItem::setToolTip(const std::optional<std::string>& text) {
  const auto tip = QString::fromStdString(text.value_or(""));
  if (icon_.toolTip() != tip) icon_.setToolTip(tip);
}

void TrayStatusItem::setMenu(std::vector<StatusMenuEntry> entries) { menu_.setEntries(std::move(entries)); }

bool TrayStatusItem::showMessage(const std::string& title, const std::string& text) {
  if (!QSystemTrayIcon::supportsMessages()) return false;
  icon_.showMessage(QString::fromStdString(title), QString::fromStdString(text), QSystemTrayIcon::Information, 15000);
  return true;
}

} // namespace lb
