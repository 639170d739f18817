#include "ui/BatteryHistoryPlot.h"

#include <QImage>
#include <QLabel>
#include <QLayout>

#include <gtest/gtest.h>

namespace lb {

namespace {

// The rows of column `x` (in points) painted exactly `colour`, in pixels.
std::vector<int> rowsOf(const QImage& image, double x, QColor colour) {
  std::vector<int> rows;
  const int column = int(x * image.devicePixelRatio());
  for (int y = 0; y < image.height(); ++y) {
    if (image.pixelColor(column, y) == colour) rows.push_back(y);
  }
  return rows;
}

} // namespace

// Earbuds over four hours, drawn at twice the size: the left line at 100 %
// for the first two hours and at 50 % after, the right one dashed at 25 %,
// each in its palette colour and at least three whole pixels thick.
TEST(BatteryHistoryPlot, DrawsEachBudAtItsLevelsInThePalettesColoursAtTwiceTheSize) {
  const Date now{std::chrono::hours(24 * 20000)};
  const auto hoursAgo = [&](double hours) { return dateAdding(now, Seconds(-hours * 3600)); };
  BatteryHistory history;
  for (auto [hours, left] : {std::pair{4.0, 100}, {2.0, 50}, {0.0, 50}})
    history.record({BatteryType::Kind::leftRight, left, 25}, hoursAgo(hours));

  BatteryHistoryPlot plot(nullptr);
  auto palette = plot.palette();
  const QColor left("#d81b60"), right("#1e88e5");
  palette.setColor(QPalette::Highlight, left);
  palette.setColor(QPalette::Text, right);
  plot.setPalette(palette);
  plot.setHistory(&history, now, "about 3 hours left");
  plot.resize(400, 200);
  plot.ensurePolished();
  plot.layout()->activate();
  QImage image(plot.size() * 2, QImage::Format_ARGB32);
  image.setDevicePixelRatio(2);
  image.fill(Qt::transparent);
  plot.render(&image);

  const auto area = plot.plotArea();
  EXPECT_EQ(plot.shownFrom(), hoursAgo(4));
  const auto expectAt = [&](double fraction, QColor colour, int level) {
    const auto rows = rowsOf(image, area.left() + fraction * area.width(), colour);
    ASSERT_GE(rows.size(), 3u) << fraction << " " << level;
    const double y = 2 * (area.bottom() - level / 100.0 * area.height());
    EXPECT_NEAR(rows.front(), y - 2, 2) << fraction << " " << level;
    EXPECT_NEAR(rows.back(), y + 2, 2) << fraction << " " << level;
  };
  expectAt(0.25, left, 100);
  expectAt(0.75, left, 50);
  // Dashed: the first of these columns that the right line crosses.
  const auto dashed = [&] {
    for (double fraction = 0.3; fraction < 0.4; fraction += 0.005) {
      if (!rowsOf(image, area.left() + fraction * area.width(), right).empty()) return fraction;
    }
    return 0.0;
  }();
  ASSERT_GT(dashed, 0.0);
  expectAt(dashed, right, 25);

  auto* caption = plot.findChild<QLabel*>("batteryCaption");
  EXPECT_TRUE(caption->text().startsWith("Last read: ")) << caption->text().toStdString();
  EXPECT_TRUE(caption->text().endsWith(" · about 3 hours left")) << caption->text().toStdString();
  plot.setHistory(nullptr, now, std::nullopt);
  EXPECT_TRUE(caption->text().startsWith("No battery levels have been read yet"));
}

} // namespace lb
