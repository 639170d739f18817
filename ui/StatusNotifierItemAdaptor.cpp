#include "ui/StatusNotifierItemAdaptor.h"

#include <QTimer>

namespace lb {

StatusNotifierItemAdaptor::StatusNotifierItemAdaptor(QObject* object, QString id, QDBusObjectPath menu)
    : QDBusAbstractAdaptor(object), id_(std::move(id)), menu_(std::move(menu)) {
  setAutoRelaySignals(false);
}

void StatusNotifierItemAdaptor::setTitle(const QString& title) {
  if (title == toolTip_.title) return;
  toolTip_.title = title;
  emit NewTitle();
  emit NewToolTip();
}

void StatusNotifierItemAdaptor::setIcon(SniPixmaps pixmaps) {
  if (pixmaps == pixmaps_) return;
  pixmaps_ = std::move(pixmaps);
  emit NewIcon();
}

void StatusNotifierItemAdaptor::setText(const QString& text) {
  if (text == toolTip_.text) return;
  toolTip_.text = text;
  emit NewToolTip();
}

// The click's work (a window, a menu) follows the answer to the host.
void StatusNotifierItemAdaptor::click(StatusItemClick::Button button) {
  QTimer::singleShot(0, this, [this, button] {
    if (onClick) onClick(button);
  });
}

void StatusNotifierItemAdaptor::Activate(int, int) { click(StatusItemClick::Button::left); }
void StatusNotifierItemAdaptor::SecondaryActivate(int, int) { click(StatusItemClick::Button::middle); }
void StatusNotifierItemAdaptor::ContextMenu(int, int) { click(StatusItemClick::Button::right); }
// A wheel over the item means nothing here.
void StatusNotifierItemAdaptor::Scroll(int, const QString&) {}

} // namespace lb
