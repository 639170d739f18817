#pragma once

#include "ports/Images.h"

#include <map>
#include <sstream>

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
    bool isWarning = false;
    ImageSize size() const override { return dimensions; }
    void setTemplate(bool value) override { isTemplateImage = value; }
    bool isTemplate() const override { return isTemplateImage; }
    void setWarning(bool value) override { isWarning = value; }
    std::vector<unsigned char> png() const override { return {}; } // no pixels here
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

  // What a picture is made of, for a test to compare: "keyboard", or for
  // a composed one its layers, "headphones-fill@0.25+battery-8@0.25"; a
  // warning picture ends in "!", "battery-2!".
  static std::string describe(const std::shared_ptr<Image>& image) {
    auto sim = std::dynamic_pointer_cast<SimImage>(image);
    if (!sim) return image ? "?" : "none";
    if (!sim->name.empty()) return sim->name + (sim->isWarning ? "!" : "");
    std::string text;
    for (const auto& layer : sim->layers) {
      std::ostringstream opacity;
      opacity << layer.opacity;
      text += (text.empty() ? "" : "+") + describe(layer.image) + "@" + opacity.str();
    }
    return text;
  }

  std::map<std::string, ImageSize> artwork;
};

} // namespace lb
