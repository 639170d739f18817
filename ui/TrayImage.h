#pragma once

#include "ports/Images.h"

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace lb {

// A picture as a recipe: one piece of artwork, or layers of other pictures.
// Drawn only when asked, at the pixel scale and colour of the moment, so it
// stays sharp at every size; its key names the recipe, so that an unchanged
// picture is known without drawing it.
class TrayImage final : public Image {
public:
  struct Layer {
    std::shared_ptr<const TrayImage> image;
    double x; // points from the left edge
    double y; // points from the bottom edge
    double opacity;
  };

  // The artwork of that name among the program's resources, if any.
  static std::shared_ptr<TrayImage> artwork(const QString& name);
  static std::shared_ptr<TrayImage> composed(ImageSize size, std::vector<Layer> layers);

  ImageSize size() const override { return size_; }
  void setTemplate(bool isTemplate) override { template_ = isTemplate; }
  bool isTemplate() const override { return template_; }
  void setWarning(bool isWarning) override { warning_ = isWarning; }
  std::vector<unsigned char> png() const override;

  // "headphones-fill", or "[headphones-fill@1.00,0.00,0.25 battery-2!@…]"
  // with "!" for a warning picture.
  QString key() const { return warning_ ? key_ + "!" : key_; }
  // The picture `scale` pixels per point; a template picture in `colour`,
  // its warning layers in the warning colour that goes with it.
  QImage render(double scale, const QColor& colour) const;
  // Reads on the panel that `colour` is drawn on: a lighter red beside a
  // light colour (a dark panel), a darker one beside a dark colour.
  static QColor warningColour(const QColor& colour);
  // The heights in pixels trays and menus ask for, at 1× and 2×.
  static const std::vector<int>& standardHeights();
  // The picture at those heights, with a halo of that colour if asked.
  QIcon icon(const QColor& colour, const std::vector<int>& heights = standardHeights(),
             const std::optional<QColor>& halo = std::nullopt) const;
  // The picture with a thin outline of `halo` around what it draws, about a
  // point wide: legible on a light panel and a dark one alike.
  static QImage withHalo(const QImage& picture, const QColor& halo, double scale);
  // Any picture core chose, as the window shows it: in `colour` whether or
  // not it is a template, since the window's pictures are drawn in its
  // text colour. Empty for a picture that is not ours.
  static QIcon iconOf(const std::shared_ptr<Image>& image, const QColor& colour);

private:
  TrayImage(ImageSize size, QString key) : size_(size), key_(std::move(key)) {}
  // The layers, all but the warning ones; or only those, each in `warning`.
  void paint(QImage& target, double scale, const std::optional<QColor>& warning = std::nullopt) const;

  ImageSize size_;
  QString key_;
  QString artworkName_; // empty for a composed picture
  std::vector<Layer> layers_;
  bool template_ = false;
  bool warning_ = false;
};

} // namespace lb
