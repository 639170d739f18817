#pragma once

#include <QProxyStyle>

namespace lb {

// The desktop's style, with the pictures of the standard buttons (OK,
// Cancel, Close…) in the palette's button-text colour: the built-in ones of
// many styles are black, and vanish on a dark theme.
class PaletteIconStyle final : public QProxyStyle {
public:
  using QProxyStyle::QProxyStyle;

  QIcon standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const override;
};

} // namespace lb
