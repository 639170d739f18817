#pragma once

#include "ports/Images.h"

#include <map>

namespace lb {

// Artwork as sizes by name; a composed image keeps its layers, so that a
// test can see the geometry.
class SimImages final : public Images {
public:
  struct SimImage final : Image {
    std::string name; // empty for a composed image
    ImageSize dimensions;
    std::vector<Layer> layers;
    bool isTemplateImage = false;
    ImageSize size() const override { return dimensions; }
    void setTemplate(bool value) override { isTemplateImage = value; }
    bool isTemplate() const override { return isTemplateImage; }
  };

  std::shared_ptr<Image> named(const std::string& name) override {
    auto found = artwork.find(name);
    if (found == artwork.end()) return nullptr;
    auto image = std::make_shared<SimImage>();
    image->name = name;
    image->dimensions = found->second;
    return image;
  }
  std::shared_ptr<Image> compose(ImageSize size, const std::vector<Layer>& layers) override {
    auto image = std::make_shared<SimImage>();
    image->dimensions = size;
    image->layers = layers;
    return image;
  }

  std::map<std::string, ImageSize> artwork;
};

} // namespace lb
