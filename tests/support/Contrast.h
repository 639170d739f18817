#pragma once

#include <QColor>

#include <algorithm>
#include <cmath>

namespace lb::test {

// WCAG's relative luminance and contrast ratio.
inline double luminance(const QColor& colour) {
  auto linear = [](double value) { return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4); };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

inline double contrast(const QColor& one, const QColor& other) {
  const double a = luminance(one), b = luminance(other);
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

} // namespace lb::test
