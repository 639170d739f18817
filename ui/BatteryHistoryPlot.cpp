#include "ui/BatteryHistoryPlot.h"

#include "ui/UiText.h"

#include <QDateTime>
#include <QEvent>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include <algorithm>

namespace lb {

namespace {

// The shortest span shown: a few readings still make a curve.
constexpr Seconds shortestSpan{120};

QDateTime localTime(Date date) {
  return QDateTime::fromSecsSinceEpoch(
      std::chrono::duration_cast<std::chrono::seconds>(date.time_since_epoch()).count());
}

// "03:24" today, else with the date, as the user's language writes them.
QString whenText(Date date, Date now) {
  const auto when = localTime(date);
  const QLocale locale;
  if (when.date() == localTime(now).date()) return locale.toString(when.time(), QLocale::ShortFormat);
  return locale.toString(when, QLocale::ShortFormat);
}

// A bud's name; none for a single battery.
QString sideName(const std::string& side) {
  if (side == "left") return uiText("left");
  if (side == "right") return uiText("right");
  return {};
}

} // namespace

// The drawing itself, its events handed to the plot.
class BatteryHistoryPlot::Canvas final : public QWidget {
public:
  explicit Canvas(QWidget* parent) : QWidget(parent) { setMinimumSize(240, 110); }
  QSize sizeHint() const override { return {320, 130}; }
};

BatteryHistoryPlot::BatteryHistoryPlot(QWidget* parent)
    : QWidget(parent), canvas_(new Canvas(this)), caption_(new QLabel(this)) {
  setObjectName("batteryHistory");
  canvas_->setAccessibleName(uiText("Battery history"));
  canvas_->installEventFilter(this);
  caption_->setObjectName("batteryCaption");
  caption_->setWordWrap(true);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(canvas_);
  layout->addWidget(caption_);
}

void BatteryHistoryPlot::setHistory(const BatteryHistory* history, Date now,
                                    const std::optional<std::string>& timeLeft) {
  history_ = history ? *history : BatteryHistory();
  to_ = now;
  from_ = dateAdding(now, -shownSpan);
  std::optional<Date> first;
  for (const auto& [side, series] : history_.sides()) {
    if (!series.empty() && (!first || series.front().at < *first)) first = series.front().at;
  }
  if (first) from_ = std::min(std::max(from_, *first), dateAdding(now, -shortestSpan));
  canvas_->setVisible(!history_.empty());
  if (history_.empty()) {
    caption_->setText(uiText("No battery levels have been read yet; they are kept while the device is connected."));
  } else {
    auto text = uiText("Last read: %1").arg(whenText(history_.lastRead().value_or(now), now));
    if (timeLeft) text += " · " + QString::fromStdString(*timeLeft);
    caption_->setText(text);
  }
  // What the picture shows, for those who cannot see it.
  QStringList levels;
  for (const auto& [side, series] : history_.sides()) {
    if (series.empty()) continue;
    const auto name = sideName(side);
    levels << (name.isEmpty() ? "" : name + " ") + QString::number(series.back().level) + " %";
  }
  canvas_->setAccessibleDescription(levels.join(", "));
  canvas_->update();
}

QRectF BatteryHistoryPlot::plotArea() const {
  const QFontMetricsF metrics(font());
  const double left = metrics.horizontalAdvance("100 %") + 6;
  const double top = metrics.height() / 2 + 1;
  return QRectF(left, top, canvas_->width() - left - 2, canvas_->height() - top - metrics.height() - 4);
}

bool BatteryHistoryPlot::eventFilter(QObject* watched, QEvent* event) {
  if (watched == canvas_ && event->type() == QEvent::Paint) {
    QPainter painter(canvas_);
    paintCanvas(painter);
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

void BatteryHistoryPlot::paintCanvas(QPainter& painter) const {
  painter.setRenderHint(QPainter::Antialiasing);
  const auto area = plotArea();
  const auto& colours = palette();
  const QFontMetricsF metrics(font());
  const auto yOf = [&](double level) { return area.bottom() - level / 100 * area.height(); };
  const double span = std::max(timeBetween(from_, to_).count(), 1.0);
  const auto xOf = [&](Date at) {
    return area.left() + std::clamp(timeBetween(from_, at).count() / span, 0.0, 1.0) * area.width();
  };

  painter.fillRect(area, colours.color(QPalette::Base));
  painter.setPen(QPen(colours.color(QPalette::Mid), 1));
  painter.drawRect(area);
  painter.setPen(colours.color(QPalette::WindowText));
  for (int level : {0, 50, 100}) {
    const double y = yOf(level);
    if (level == 50) {
      painter.setPen(QPen(colours.color(QPalette::Mid), 1, Qt::DotLine));
      painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
      painter.setPen(colours.color(QPalette::WindowText));
    }
    painter.drawText(QRectF(0, y - metrics.height() / 2, area.left() - 4, metrics.height()),
                     Qt::AlignRight | Qt::AlignVCenter, QString::number(level) + " %");
  }
  const double labelTop = area.bottom() + 2;
  painter.drawText(QRectF(area.left(), labelTop, area.width(), metrics.height()), Qt::AlignLeft, whenText(from_, to_));
  painter.drawText(QRectF(area.left(), labelTop, area.width(), metrics.height()), Qt::AlignRight, uiText("now"));

  const auto penOf = [&](const std::string& side) {
    const bool right = side == "right";
    QPen pen(colours.color(right ? QPalette::Text : QPalette::Highlight), 2, right ? Qt::DashLine : Qt::SolidLine);
    pen.setJoinStyle(Qt::MiterJoin);
    return pen;
  };
  // Which line is which bud, between the two times.
  if (history_.sides().contains("right")) {
    double x = area.center().x() - metrics.horizontalAdvance(sideName("left") + sideName("right")) / 2 - 24;
    const double y = labelTop + metrics.height() / 2;
    for (const char* side : {"left", "right"}) {
      painter.setPen(penOf(side));
      painter.drawLine(QPointF(x, y), QPointF(x + 16, y));
      painter.setPen(colours.color(QPalette::WindowText));
      const auto name = sideName(side);
      painter.drawText(QPointF(x + 20, labelTop + metrics.ascent()), name);
      x += 28 + metrics.horizontalAdvance(name);
    }
  }

  // Each level holds until the next one was read; the last until the last read.
  const auto lastRead = history_.lastRead().value_or(to_);
  // Lines at 0 and 100 % show whole.
  painter.setClipRect(area.adjusted(0, -2, 0, 2));
  for (const auto& [side, series] : history_.sides()) {
    QPainterPath path;
    for (std::size_t i = 0; i < series.size(); ++i) {
      const QPointF point(xOf(series[i].at), yOf(series[i].level));
      if (i == 0) {
        path.moveTo(point);
      } else {
        path.lineTo(QPointF(point.x(), path.currentPosition().y()));
        path.lineTo(point);
      }
    }
    path.lineTo(QPointF(xOf(std::max(lastRead, series.back().at)), path.currentPosition().y()));
    painter.setPen(penOf(side));
    painter.drawPath(path);
  }
}

} // namespace lb
