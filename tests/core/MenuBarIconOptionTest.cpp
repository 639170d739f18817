#include "core/MenuBarIconOption.h"
#include "sim/SimImages.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <set>

namespace lb {

TEST(MenuBarIconOption, RawValuesGaugesAndTheMenu) {
  EXPECT_EQ(allMenuBarIconOptions().size(), 49u);
  EXPECT_EQ(menuBarIconOption("airpods"), MenuBarIconOption::earbuds);
  EXPECT_EQ(menuBarIconOption("box"), MenuBarIconOption::box);
  EXPECT_FALSE(menuBarIconOption("no-such-picture"));
  EXPECT_EQ(toolTip(MenuBarIconOption::sonyWH1000XM4), "Sony WH-1000XM4");
  EXPECT_FALSE(toolTip(MenuBarIconOption::wand));

  for (auto [level, name] : {std::pair{-3, "battery-0"},
                             {4, "battery-0"},
                             {5, "battery-1"},
                             {14, "battery-1"},
                             {94, "battery-9"},
                             {95, "battery-10"},
                             {150, "battery-10"}}) {
    EXPECT_EQ(batteryImageName(level), name) << level;
  }

  std::set<MenuBarIconOption> listed;
  int separators = 0;
  for (const auto& entry : iconsForMenu()) {
    if (!entry) ++separators;
    else EXPECT_TRUE(listed.insert(*entry).second) << rawValue(*entry) << " listed twice";
  }
  EXPECT_EQ(separators, 10);
  EXPECT_EQ(listed.size(), 49u);
}

TEST(MenuBarIconOption, TheGaugeSitsRightOfTheIconOverlappingIt) {
  SimImages images;
  images.artwork = {{"headphones-fill", {20, 16}}, {"mouse", {20, 18}}, {"battery-9", {8, 10}}};
  auto composed = std::dynamic_pointer_cast<SimImages::SimImage>(
      image(images, MenuBarIconOption::headphones, 85, 0.25));
  ASSERT_TRUE(composed);
  EXPECT_DOUBLE_EQ(composed->size().width, 31.0);
  EXPECT_DOUBLE_EQ(composed->size().height, 16.0);
  EXPECT_TRUE(composed->isTemplate());
  ASSERT_EQ(composed->layers.size(), 2u);
  EXPECT_DOUBLE_EQ(composed->layers[0].x, 1.0);
  EXPECT_DOUBLE_EQ(composed->layers[1].x, 18.0); // 2 points in from the icon's right edge
  EXPECT_DOUBLE_EQ(composed->layers[1].y, 3.0);
  EXPECT_DOUBLE_EQ(composed->layers[1].opacity, 0.25);

  // The mouse has no "-fill" artwork: the plain one serves, and as a narrow
  // picture its gauge overlaps by 4 points.
  auto mouse = std::dynamic_pointer_cast<SimImages::SimImage>(image(images, MenuBarIconOption::mouse, 85, 1.0));
  EXPECT_EQ(std::dynamic_pointer_cast<SimImages::SimImage>(mouse->layers[0].image)->name, "mouse");
  EXPECT_DOUBLE_EQ(mouse->layers[1].x, 16.0);
  EXPECT_DOUBLE_EQ(mouse->size().height, 18.0);
}

TEST(MenuBarIconOption, MissingArtworkIsLoggedNotFatal) {
  test::CapturedLog log;
  SimImages images;
  images.artwork = {{"headphones-fill", {20, 16}}};
  auto plain = std::dynamic_pointer_cast<SimImages::SimImage>(image(images, MenuBarIconOption::headphones, 50, 0.5));
  ASSERT_TRUE(plain);
  EXPECT_EQ(plain->name, "headphones-fill"); // without the gauge, at full opacity
  EXPECT_TRUE(log.contains("Missing image: battery-5"));
  EXPECT_FALSE(image(images, MenuBarIconOption::keyboard, 50, 1.0));

  auto faded = std::dynamic_pointer_cast<SimImages::SimImage>(
      connectedImage(images, MenuBarIconOption::headphones, 0.25));
  EXPECT_DOUBLE_EQ(faded->layers.at(0).opacity, 0.25);

  EXPECT_EQ(availableIconsForMenu(images).size(), 59u);
  EXPECT_TRUE(log.contains("No connected image for keyboard"));
  EXPECT_TRUE(log.contains("No image for headphones")); // only its "-fill" artwork exists
}

// Classes of real devices, as BlueZ reports them.
TEST(MenuBarIconOption, ANewDeviceGetsThePictureOfItsClass) {
  using enum MenuBarIconOption;
  const std::pair<std::uint32_t, MenuBarIconOption> classes[] = {
      {0x240404, headset},
      {0x240418, headphones},
      {0x240414, horizontalSpeaker},
      {0x24041c, boombox},
      {0x240428, desktopSpeaker},
      {0x002540, keyboard},
      {0x002580, mouse},
      {0x0025c0, keyboard},
      {0x002508, gameController},
      {0x5a020c, phone},
      {0x000000, wand},
      {0x00010c, wand}, // a laptop
      {0x00250c, siriRemote},
      {0x240420, horizontalSpeaker},
      {0x240410, wand}, // remote, car audio, microphone
  };
  for (const auto& [classOfDevice, icon] : classes) {
    EXPECT_EQ(iconForClassOfDevice(classOfDevice), icon) << std::hex << classOfDevice;
  }
}

} // namespace lb
