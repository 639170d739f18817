#include "ui/SvgImages.h"

#include "ui/TrayImage.h"

namespace lb {

std::shared_ptr<Image> SvgImages::named(const std::string& name) {
  return TrayImage::artwork(QString::fromStdString(name));
}

std::shared_ptr<Image> SvgImages::compose(ImageSize size, const std::vector<Layer>& layers) {
  std::vector<TrayImage::Layer> drawn;
  for (const auto& layer : layers) {
    auto image = std::dynamic_pointer_cast<const TrayImage>(layer.image);
    if (image) drawn.push_back({image, layer.x, layer.y, layer.opacity});
  }
  return TrayImage::composed(size, std::move(drawn));
}

} // namespace lb
