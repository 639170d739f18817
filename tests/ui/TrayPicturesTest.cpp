#include "core/MenuBarIconOption.h"
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

} // namespace

TEST(TrayPictures, EveryOptionHasItsOwnOutlineAndFilledPictureInThePanelsColour) {
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
  // A template takes the colour it is given, at any scale.
  const auto headphones = std::dynamic_pointer_cast<TrayImage>(connectedImage(images, MenuBarIconOption::headphones));
  const auto large = headphones->render(2.0, ink);
  EXPECT_EQ(large.size(), QSize(48, 48));
  bool inkOnly = true;
  for (int y = 0; y < large.height(); ++y) {
    for (int x = 0; x < large.width(); ++x) {
      const QColor pixel = QColor::fromRgba(large.pixel(x, y));
      if (pixel.alpha() == 255) inkOnly = inkOnly && pixel.rgb() == ink.rgb();
    }
  }
  EXPECT_TRUE(inkOnly);
  EXPECT_FALSE(headphones->png().empty());
}

TEST(TrayPictures, TheGaugeFillsWithTheLevelAndSitsBesideTheDimmedIcon) {
  SvgImages images;
  int previous = 0;
  for (int level : {0, 10, 50, 100}) {
    const int fill = inked(drawn(images.named(batteryImageName(level))));
    EXPECT_GT(fill, previous) << level;
    previous = fill;
  }
  const auto composed = image(images, MenuBarIconOption::headphones, 80, 0.25);
  EXPECT_DOUBLE_EQ(composed->size().width, 24 + 8 + 3);
  const auto picture = drawn(composed);
  int maximum = 0;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) maximum = std::max(maximum, qAlpha(picture.pixel(x, y)));
  }
  EXPECT_NEAR(maximum, 0.25 * 255, 2); // dimmed all over
  // The same recipe is the same picture: the tray sends nothing for it.
  EXPECT_EQ(std::dynamic_pointer_cast<TrayImage>(composed)->key(),
            std::dynamic_pointer_cast<TrayImage>(image(images, MenuBarIconOption::headphones, 80, 0.25))->key());
}

TEST(TrayPictures, TheSpinnerTurnsFromFrameToFrameInTheColourGiven) {
  const auto first = Spinner::frame(0, 22, Qt::white), second = Spinner::frame(1, 22, Qt::white);
  EXPECT_NE(first, second);
  int brightest = 0;
  for (int y = 0; y < 22; ++y) {
    for (int x = 0; x < 22; ++x) {
      const QColor pixel = QColor::fromRgba(first.pixel(x, y));
      if (pixel.alpha() > 0) {
        EXPECT_EQ(pixel.red(), pixel.blue()); // white at some opacity
      }
      brightest = std::max(brightest, pixel.alpha());
    }
  }
  EXPECT_GT(brightest, 150);
  EXPECT_EQ(qAlpha(first.pixel(11, 11)), 0); // the middle stays open
}

} // namespace lb
