#pragma once

#include "ports/Images.h"

namespace lb {

// The program's artwork, built into it from ui/artwork, and pictures
// composed from it.
class SvgImages final : public Images {
public:
  std::shared_ptr<Image> named(const std::string& name) override;
  std::shared_ptr<Image> compose(ImageSize size, const std::vector<Layer>& layers) override;
};

} // namespace lb
