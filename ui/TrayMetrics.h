#pragma once

#include <array>

// The sizes of the tray's pictures, named once.
namespace lb::trayMetrics {

// A panel's icon height in points, on which the pictures and the spinner
// are laid out.
inline constexpr double thickness = 22.0;
// The heights in points that StatusNotifierItem hosts draw; each is sent at
// the screen's pixel ratio.
inline constexpr std::array<int, 6> hostPoints{16, 22, 24, 32, 48, 64};
// The heights in pixels that XEmbed trays and menus ask for, at 1× and 2×.
inline constexpr std::array<int, 7> standardPixels{16, 22, 24, 32, 44, 48, 64};

} // namespace lb::trayMetrics
