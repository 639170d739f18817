#include "ui/Spinner.h"

#include "ui/TrayMetrics.h"

#include <QPainter>

#include <algorithm>
#include <chrono>

namespace lb {

namespace {
constexpr int spokes = 12;
constexpr double height = trayMetrics::thickness; // points: the spokes are laid out on the tray's height
constexpr double spokeLength = 3.0, spokeStart = 4.0, firstOpacity = 0.15;
constexpr std::chrono::milliseconds stepTime{700 / spokes};
} // namespace

QImage Spinner::frame(int step, int pixels, const QColor& colour) {
  QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const double scale = pixels / height, radius = height / 2;
  painter.scale(scale, scale);
  painter.translate(radius, radius);
  const double end = std::min(radius - spokeStart, spokeLength + spokeStart);
  for (int i = 0; i < spokes; ++i) {
    QColor stroke = colour;
    stroke.setAlphaF(float(firstOpacity + 0.0625 * i));
    painter.setPen(QPen(stroke, 1.0, Qt::SolidLine, Qt::RoundCap));
    painter.save();
    painter.rotate(30.0 * (i + step));
    painter.drawLine(QPointF(0, -spokeStart), QPointF(0, -end));
    painter.restore();
  }
  return image;
}

void Spinner::start(const QColor& colour, const std::optional<QColor>& halo, ShowFrame show) {
  if (frames_.empty() || framesColour_ != colour || framesHalo_ != halo) {
    frames_.clear();
    framesColour_ = colour;
    framesHalo_ = halo;
    for (int step = 0; step < spokes; ++step) {
      QIcon icon;
      for (int pixels : heights_) {
        const auto drawn = frame(step, pixels, colour);
        icon.addPixmap(QPixmap::fromImage(halo ? TrayImage::withHalo(drawn, *halo, pixels / height) : drawn));
      }
      frames_.push_back(icon);
    }
  }
  step_ = 0;
  show(frames_[0]);
  timer_ = std::make_unique<QTimer>();
  timer_->setInterval(stepTime);
  QObject::connect(timer_.get(), &QTimer::timeout, [this, show = std::move(show)] {
    step_ = (step_ + 1) % spokes;
    show(frames_[std::size_t(step_)]);
  });
  timer_->start();
}

void Spinner::stop() { timer_.reset(); }

} // namespace lb
