#pragma once

#include "core/BatteryHistory.h"

#include <QWidget>

#include <optional>
#include <string>

class QLabel;

namespace lb {

// The selected device's battery over the last 7 days (or since its first
// reading, when that is later): a line for each side in the palette's
// colours, the highlight's, and the text's dashed for the right bud; under
// it the time of the last read and the time left.
class BatteryHistoryPlot final : public QWidget {
  Q_OBJECT
public:
  static constexpr Seconds shownSpan{7.0 * 86400};

  explicit BatteryHistoryPlot(QWidget* parent);

  // None, or an empty history: a line that says so instead of the plot.
  void setHistory(const BatteryHistory* history, Date now, const std::optional<std::string>& timeLeft);

  // Where the levels are drawn: 100 % at its top, 0 % at its bottom, the
  // first time shown at its left and now at its right.
  QRectF plotArea() const;
  Date shownFrom() const { return from_; }

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  class Canvas;
  void paintCanvas(QPainter& painter) const;

  Canvas* canvas_;
  QLabel* caption_;
  BatteryHistory history_;
  Date from_{};
  Date to_{};
};

} // namespace lb
