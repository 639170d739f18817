#include "ui/TrayImage.h"

#include "ui/TrayMetrics.h"

#include <QBuffer>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>
#include <map>

namespace lb {

namespace {

QString resourceOf(const QString& name) { return ":/artwork/" + name + ".svg"; }

// Parsed once per run; the tray draws the same few pictures again and again.
QSvgRenderer* rendererOf(const QString& name) {
  static std::map<QString, std::unique_ptr<QSvgRenderer>> renderers;
  auto& renderer = renderers[name];
  if (!renderer) renderer = std::make_unique<QSvgRenderer>(resourceOf(name));
  return renderer->isValid() ? renderer.get() : nullptr;
}

} // namespace

std::shared_ptr<TrayImage> TrayImage::artwork(const QString& name) {
  if (!QFile::exists(resourceOf(name))) return nullptr;
  auto* renderer = rendererOf(name);
  if (!renderer) return nullptr;
  const auto box = renderer->viewBoxF();
  std::shared_ptr<TrayImage> image(new TrayImage({box.width(), box.height()}, name));
  image->artworkName_ = name;
  return image;
}

std::shared_ptr<TrayImage> TrayImage::composed(ImageSize size, std::vector<Layer> layers) {
  QString key = "[";
  for (const auto& layer : layers) {
    key += QString("%1@%2,%3,%4 ")
               .arg(layer.image->key())
               .arg(layer.x, 0, 'f', 2)
               .arg(layer.y, 0, 'f', 2)
               .arg(layer.opacity, 0, 'f', 3);
  }
  key += QString("%1x%2]").arg(size.width).arg(size.height);
  std::shared_ptr<TrayImage> image(new TrayImage(size, key));
  image->layers_ = std::move(layers);
  return image;
}

void TrayImage::paint(QImage& target, double scale, const std::optional<QColor>& warning) const {
  QPainter painter(&target);
  painter.setRenderHint(QPainter::Antialiasing);
  if (!artworkName_.isEmpty()) {
    // At the scale asked for, not stretched to the whole pixels of the target.
    if (auto* renderer = rendererOf(artworkName_); renderer && !warning) {
      renderer->render(&painter, QRectF(0, 0, size_.width * scale, size_.height * scale));
    }
    return;
  }
  for (const auto& layer : layers_) {
    if (layer.image->warning_ != warning.has_value()) continue;
    const auto layerSize = layer.image->size();
    QImage drawn(QSize(int(std::lround(layerSize.width * scale)), int(std::lround(layerSize.height * scale))),
                 QImage::Format_ARGB32_Premultiplied);
    drawn.fill(Qt::transparent);
    layer.image->paint(drawn, scale);
    if (warning) {
      QPainter tint(&drawn);
      tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
      tint.fillRect(drawn.rect(), *warning);
    }
    painter.setOpacity(layer.opacity);
    // The layers' origin is the bottom left, as the pictures were composed.
    painter.drawImage(QPointF(layer.x * scale, (size_.height - layer.y - layerSize.height) * scale), drawn);
  }
}

QImage TrayImage::render(double scale, const QColor& colour) const {
  QImage image(QSize(int(std::lround(size_.width * scale)), int(std::lround(size_.height * scale))),
               QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  paint(image, scale);
  if (template_) {
    // A template keeps only its coverage: the colour is the panel's.
    QPainter tint(&image);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(image.rect(), colour);
  }
  paint(image, scale, warningColour(colour));
  return image;
}

QColor TrayImage::warningColour(const QColor& colour) {
  return colour.lightnessF() > 0.5 ? QColor(0xff, 0x8a, 0x65) : QColor(0xc6, 0x28, 0x28);
}

std::vector<unsigned char> TrayImage::png() const {
  QByteArray data;
  QBuffer buffer(&data);
  buffer.open(QIODevice::WriteOnly);
  if (!render(2.0, Qt::black).save(&buffer, "PNG")) return {};
  return {data.begin(), data.end()};
}

const std::vector<int>& TrayImage::standardHeights() {
  static const std::vector<int> heights(trayMetrics::standardPixels.begin(), trayMetrics::standardPixels.end());
  return heights;
}

QIcon TrayImage::icon(const QColor& colour, const std::vector<int>& heights, const std::optional<QColor>& halo) const {
  QIcon icon;
  if (size_.height <= 0) return icon;
  for (int pixels : heights) {
    const double scale = pixels / size_.height;
    const auto drawn = render(scale, colour);
    icon.addPixmap(QPixmap::fromImage(halo ? withHalo(drawn, *halo, scale) : drawn));
  }
  return icon;
}

QImage TrayImage::withHalo(const QImage& picture, const QColor& halo, double scale) {
  // The picture's shape in the halo's colour, laid round it in eight
  // directions, then the picture over it.
  QImage shape = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  {
    QPainter tint(&shape);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(shape.rect(), halo);
  }
  QImage result(picture.size(), QImage::Format_ARGB32_Premultiplied);
  result.fill(Qt::transparent);
  QPainter painter(&result);
  const int reach = std::max(1, int(scale + 0.5));
  for (int dx = -reach; dx <= reach; dx += reach) {
    for (int dy = -reach; dy <= reach; dy += reach) {
      if (dx || dy) painter.drawImage(dx, dy, shape);
    }
  }
  painter.drawImage(0, 0, picture);
  return result;
}

QIcon TrayImage::iconOf(const std::shared_ptr<Image>& image, const QColor& colour) {
  auto ours = std::dynamic_pointer_cast<TrayImage>(image);
  if (!ours) return {};
  TrayImage inked(*ours);
  inked.template_ = true;
  return inked.icon(colour);
}

} // namespace lb
