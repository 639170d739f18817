#pragma once

#include <memory>
#include <string>
#include <vector>

namespace lb {

struct ImageSize {
  double width = 0;
  double height = 0;
};

// An image of the program's artwork or one composed from such images.
class Image {
public:
  virtual ~Image() = default;
  virtual ImageSize size() const = 0;
  // A template image is drawn in the tray's own colour.
  virtual void setTemplate(bool isTemplate) = 0;
  virtual bool isTemplate() const = 0;
  // A warning picture is drawn in the palette's warning colour wherever it
  // is shown, also as a layer of a template.
  virtual void setWarning(bool isWarning) = 0;
  // The picture as PNG data, at twice its size in points; empty when it
  // cannot be drawn.
  virtual std::vector<unsigned char> png() const = 0;
};

// The program's named artwork, and drawing images into a new one.
class Images {
public:
  struct Layer {
    std::shared_ptr<Image> image;
    double x; // points from the left edge
    double y; // points from the bottom edge
    double opacity;
  };

  virtual ~Images() = default;
  // The artwork of that name, or nothing.
  virtual std::shared_ptr<Image> named(const std::string& name) = 0;
  // A new image of `size`, the layers drawn over each other in order.
  virtual std::shared_ptr<Image> compose(ImageSize size, const std::vector<Layer>& layers) = 0;
};

} // namespace lb
