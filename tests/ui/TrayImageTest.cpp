#include "core/MenuBarIconOption.h"
#include "core/Tunables.h"
#include "tests/support/Contrast.h"
#include "ui/Spinner.h"
#include "ui/SvgImages.h"
#include "ui/TrayImage.h"

#include <gtest/gtest.h>

#include <set>

namespace lb {

namespace {

const QColor ink(40, 120, 200);

QImage drawn(const std::shared_ptr<Image>& image, int pixels = 22) {
  auto tray = std::dynamic_pointer_cast<TrayImage>(image);
  return tray ? tray->render(pixels / tray->size().height, ink) : QImage();
}

int inked(const QImage& image) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) count += qAlpha(image.pixel(x, y)) > 0;
  }
  return count;
}

// The strongest contrast the picture's pixels make with the panel, each
// drawn over it as the panel would.
double contrastOn(const QImage& picture, const QColor& panel) {
  double strongest = 1;
  const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < pixels.height(); ++y) {
    for (int x = 0; x < pixels.width(); ++x) {
      const QColor pixel = QColor::fromRgba(pixels.pixel(x, y));
      const double alpha = pixel.alphaF();
      const QColor over = QColor::fromRgbF(float(alpha * pixel.redF() + (1 - alpha) * panel.redF()),
                                           float(alpha * pixel.greenF() + (1 - alpha) * panel.greenF()),
                                           float(alpha * pixel.blueF() + (1 - alpha) * panel.blueF()));
      strongest = std::max(strongest, test::contrast(over, panel));
    }
  }
  return strongest;
}

} // namespace

// Every state keeps 3:1 against its panel: light pictures on dark panels
// (GNOME's black bar, a dark Xfce panel), dark ones on light panels, and
// the haloed pictures, for a panel nobody names, on all of them.
TEST(TrayImage, EveryStateStandsOutFromLightAndDarkPanels) {
  SvgImages images;
  const double dimmed = tunable::NotAudioOutputFraction.defaultValue;
  const auto option = MenuBarIconOption::headphones;
  auto outline = images.named("headphones");
  outline->setTemplate(true); // as the tray is given it
  const std::vector<std::pair<const char*, std::shared_ptr<Image>>> states{
      {"outline", outline},
      {"filled", connectedImage(images, option)},
      {"dimmed", connectedImage(images, option, dimmed)},
      {"gauge", image(images, option, 60, false, dimmed)}};
  const QColor dark[] = {QColor("#000000"), QColor("#2d2d2d")}, light[] = {QColor("#ffffff"), QColor("#f6f5f4")};
  auto check = [&](const QColor& ink, std::optional<QColor> halo, const QColor& panel) {
    for (const auto& [state, picture] : states) {
      const auto tray = std::dynamic_pointer_cast<TrayImage>(picture);
      ASSERT_TRUE(tray) << state;
      auto drawn = tray->render(22 / tray->size().height, ink);
      if (halo) drawn = TrayImage::withHalo(drawn, *halo, 22 / tray->size().height);
      EXPECT_GE(contrastOn(drawn, panel), 3.0) << state << " on " << panel.name().toStdString();
    }
    auto frame = Spinner::frame(3, 22, ink);
    EXPECT_NE(frame, Spinner::frame(4, 22, ink)); // it turns
    if (halo) frame = TrayImage::withHalo(frame, *halo, 1);
    EXPECT_GE(contrastOn(frame, panel), 3.0) << "spinner on " << panel.name().toStdString();
  };
  for (const auto& panel : dark) check(Qt::white, std::nullopt, panel);
  for (const auto& panel : light) check(Qt::black, std::nullopt, panel);
  for (const auto& panel : {dark[0], dark[1], light[0], light[1]}) check(Qt::black, QColor(Qt::white), panel);
}

TEST(TrayImage, EveryOptionHasItsOwnOutlineAndFilledPictureInThePanelsColour) {
  SvgImages images;
  std::set<QByteArray> seen;
  for (const auto& each : allMenuBarIconOptions()) {
    const std::string name(each.rawValue);
    const auto outline = images.named(name);
    const auto filled = connectedImage(images, each.option);
    ASSERT_TRUE(outline && filled) << name;
    EXPECT_DOUBLE_EQ(outline->size().height, 24);
    const auto outlineAt22 = drawn(outline), filledAt22 = drawn(filled);
    EXPECT_GT(inked(outlineAt22), 22) << name;
    EXPECT_NE(filledAt22, outlineAt22) << name;
    EXPECT_TRUE(
        seen.insert(QByteArray(reinterpret_cast<const char*>(outlineAt22.constBits()), outlineAt22.sizeInBytes()))
            .second)
        << name << " looks like another option";
  }
  // Sharp at twice the size.
  const auto headphones = std::dynamic_pointer_cast<TrayImage>(connectedImage(images, MenuBarIconOption::headphones));
  EXPECT_EQ(headphones->render(2.0, ink).size(), QSize(48, 48));
  EXPECT_FALSE(headphones->png().empty());
}

// At the tray's sizes the gauge's fill is at least two whole pixels wide
// and rises with the level; a low gauge is drawn in the warning colour,
// the picture beside it staying in the panel's.
TEST(TrayImage, TheGaugeIsReadableAtSmallSizesAndWarnsInItsOwnColour) {
  SvgImages images;
  const auto gauge = [&images](int level, bool low, int pixels) {
    return drawn(image(images, MenuBarIconOption::headphones, level, low, 1.0), pixels);
  };
  for (int pixels : {16, 22, 32}) {
    const auto empty = gauge(0, false, pixels);
    int previousHeight = 0;
    for (int level : {20, 50, 100}) {
      // The fill: whole pixels this level covers that an empty gauge leaves
      // clear; its widest run, and the rows it is in.
      const auto full = gauge(level, false, pixels);
      int width = 0, height = 0;
      for (int y = 0; y < full.height(); ++y) {
        int run = 0, widest = 0;
        for (int x = 0; x < full.width(); ++x) {
          run = qAlpha(full.pixel(x, y)) == 255 && qAlpha(empty.pixel(x, y)) < 128 ? run + 1 : 0;
          widest = std::max(widest, run);
        }
        width = std::max(width, widest);
        height += widest > 0;
      }
      EXPECT_GE(width, 2) << pixels << " px, " << level << " %";
      EXPECT_GT(height, previousHeight) << pixels << " px, " << level << " %";
      previousHeight = height;
    }
    std::set<QRgb> colours;
    const auto low = gauge(20, true, pixels);
    for (int y = 0; y < low.height(); ++y) {
      for (int x = 0; x < low.width(); ++x) {
        if (qAlpha(low.pixel(x, y)) == 255) colours.insert(low.pixel(x, y) | 0xff000000);
      }
    }
    EXPECT_EQ(colours, (std::set<QRgb>{ink.rgb(), TrayImage::warningColour(ink).rgb()})) << pixels << " px";
  }

  const auto composed = image(images, MenuBarIconOption::headphones, 80, false, 0.25);
  EXPECT_DOUBLE_EQ(composed->size().width, 24 + 8 + 3);
  const auto picture = drawn(composed);
  int maximum = 0;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) maximum = std::max(maximum, qAlpha(picture.pixel(x, y)));
  }
  EXPECT_NEAR(maximum, 0.25 * 255, 2); // dimmed all over
  // The same recipe is the same picture: the tray sends nothing for it.
  const auto key = [&images](bool low) {
    return std::dynamic_pointer_cast<TrayImage>(image(images, MenuBarIconOption::headphones, 80, low, 0.25))->key();
  };
  EXPECT_EQ(std::dynamic_pointer_cast<TrayImage>(composed)->key(), key(false));
  EXPECT_NE(key(true), key(false));
}

} // namespace lb
