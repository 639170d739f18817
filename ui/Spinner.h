#pragma once

#include "ui/TrayImage.h"

#include <QColor>
#include <QIcon>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

namespace lb {

// The connecting spinner: twelve spokes like a clock face, fading from
// the leading one, turning clockwise a spoke at a time, 0.7 s a turn.
// The frames are drawn once per colour; the timer exists only while
// something spins, so an idle tray wakes nothing.
class Spinner {
public:
  using ShowFrame = std::function<void(const QIcon&)>;

  // Frames `heights` pixels high.
  explicit Spinner(std::vector<int> heights = TrayImage::standardHeights()) : heights_(std::move(heights)) {}

  // One frame, `step` spokes turned, `pixels` square.
  static QImage frame(int step, int pixels, const QColor& colour);

  // Starts showing frames through `show` until the spinner is stopped or
  // destroyed.
  void start(const QColor& colour, const std::optional<QColor>& halo, ShowFrame show);
  void stop();
  bool spinning() const { return timer_ != nullptr; }

private:
  std::vector<int> heights_;
  std::vector<QIcon> frames_;
  QColor framesColour_;
  std::optional<QColor> framesHalo_;
  std::unique_ptr<QTimer> timer_;
  int step_ = 0;
};

} // namespace lb
