#include "ui/PaletteIconStyle.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>
#include <QWidget>

namespace lb {

QIcon PaletteIconStyle::standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const {
  auto icon = QProxyStyle::standardIcon(which, option, widget);
  if (which < SP_DialogOkButton || which > SP_DialogNoButton || icon.isNull()) return icon;
  const QPalette& palette = option ? option->palette : widget ? widget->palette() : QApplication::palette();
  const QColor ink = palette.color(QPalette::ButtonText);
  QIcon inked;
  for (const auto size : icon.availableSizes()) {
    auto image = icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter tint(&image);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(image.rect(), ink);
    tint.end();
    inked.addPixmap(QPixmap::fromImage(image));
  }
  return inked;
}

} // namespace lb
