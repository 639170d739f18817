#include "ui/TrayStatusItem.h"

#include "core/LogAreas.h"
#include "ui/TrayStatusBar.h"

#include <QCursor>
#include <QGuiApplication>

#include <cmath>

namespace lb {

namespace {

// A title is shown as it stands: no mnemonics.
QString menuText(const std::string& title) { return QString::fromStdString(title).replace("&", "&&"); }

} // namespace

TrayStatusItem::TrayStatusItem(TrayStatusBar& bar) : bar_(bar) {
  icon_.setContextMenu(&menu_);
  QObject::connect(&menu_, &QMenu::aboutToShow, [this] { refreshMenuTitles(); });
  QObject::connect(&icon_, &QSystemTrayIcon::activated, [this](QSystemTrayIcon::ActivationReason reason) {
    if (!onClick_) return;
    // Control-click cannot reach us over StatusNotifierItem; the middle
    // button stands in for it.
    if (reason == QSystemTrayIcon::Trigger) onClick_({StatusItemClick::Button::left, false});
    if (reason == QSystemTrayIcon::MiddleClick) onClick_({StatusItemClick::Button::middle, false});
  });
}

TrayStatusItem::~TrayStatusItem() {
  icon_.hide();
  bar_.forget(this);
}

void TrayStatusItem::setAccessibilityLabel(const std::optional<std::string>& label) {
  const auto name = QString::fromStdString(label.value_or(""));
  menu_.setTitle(name);
  menu_.setAccessibleName(name);
}

void TrayStatusItem::setImage(std::shared_ptr<Image> image) {
  image_ = std::dynamic_pointer_cast<TrayImage>(image);
  if (!spinner_.spinning()) show();
}

void TrayStatusItem::show() {
  const QColor colour = bar_.colour();
  const QString key = (image_ ? image_->key() : QString()) + (image_ && image_->isTemplate() ? colour.name() : "");
  // An unchanged picture sends nothing to the tray.
  if (key == shownKey_) return;
  shownKey_ = key;
  setIcon(image_ ? image_->icon(colour) : QIcon());
}

// The item enters the tray with its first picture.
void TrayStatusItem::setIcon(const QIcon& icon) {
  icon_.setIcon(icon);
  if (!icon.isNull() && !icon_.isVisible()) icon_.show();
}

void TrayStatusItem::redraw() {
  shownKey_.clear();
  if (!spinner_.spinning()) show();
}

void TrayStatusItem::setToolTip(const std::optional<std::string>& text) {
  const auto tip = QString::fromStdString(text.value_or(""));
  if (icon_.toolTip() != tip) icon_.setToolTip(tip);
}

void TrayStatusItem::setBusy(bool busy) {
  if (busy == spinner_.spinning()) return;
  if (busy) {
    spinner_.start(bar_.colour(), [this](const QIcon& frame) { setIcon(frame); });
    shownKey_.clear();
  } else {
    spinner_.stop();
    show();
  }
}

void TrayStatusItem::setMenu(std::vector<StatusMenuEntry> entries) {
  menu_.clear();
  actions_.clear();
  entries_ = std::move(entries);
  for (const auto& entry : entries_) {
    if (!entry.title) {
      actions_.push_back(menu_.addSeparator());
      continue;
    }
    auto* action = menu_.addAction(QString());
    action->setEnabled(bool(entry.action));
    if (entry.action) QObject::connect(action, &QAction::triggered, entry.action);
    actions_.push_back(action);
  }
  refreshMenuTitles();
}

void TrayStatusItem::refreshMenuTitles() {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].title) actions_[i]->setText(menuText(entries_[i].title()));
  }
}

void TrayStatusItem::popUpMenu() {
  // A Wayland client cannot place a window at the pointer; there the host's
  // menu on a right click is the way.
  if (QGuiApplication::platformName() == "wayland") {
    PXR_LOG(trayLog(), "The menu opens with a right click on Wayland.");
    return;
  }
  menu_.popup(QCursor::pos());
}

bool TrayStatusItem::showMessage(const std::string& title, const std::string& text) {
  if (!QSystemTrayIcon::supportsMessages()) return false;
  icon_.showMessage(QString::fromStdString(title), QString::fromStdString(text), QSystemTrayIcon::Information, 15000);
  return true;
}

} // namespace lb
