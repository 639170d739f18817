#include "core/MenuBarIconOption.h"
#include "sim/SimImages.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace lb {

TEST(MenuBarIconOption, RawValuesAndGauges) {
  EXPECT_EQ(menuBarIconOption("airpods"), MenuBarIconOption::earbuds);
  EXPECT_FALSE(menuBarIconOption("no-such-picture"));

  // Rounded to the nearest tenth.
  for (auto [level, name] : {std::pair{4, "battery-0"}, {5, "battery-1"}, {94, "battery-9"}, {150, "battery-10"}}) {
    EXPECT_EQ(batteryImageName(level), name) << level;
  }
}

// The mouse has no "-fill" artwork: the plain one serves, and as a narrow
// picture its gauge overlaps by 4 points.
TEST(MenuBarIconOption, ANarrowPicturesGaugeOverlapsItMore) {
  SimImages images;
  images.artwork = {{"headphones-fill", {20, 16}}, {"mouse", {20, 18}}, {"battery-9", {8, 10}}};
  auto mouse = std::dynamic_pointer_cast<SimImages::SimImage>(image(images, MenuBarIconOption::mouse, 85, false, 1.0));
  EXPECT_EQ(std::dynamic_pointer_cast<SimImages::SimImage>(mouse->layers[0].image)->name, "mouse");
  EXPECT_DOUBLE_EQ(mouse->layers[1].x, 16.0);

  // Missing artwork is logged, not fatal: without its gauge, the icon alone.
  EXPECT_EQ(SimImages::describe(image(images, MenuBarIconOption::headphones, 5, true, 0.25)), "headphones-fill");
  EXPECT_TRUE(std::ranges::equal(availableIconsForMenu(images), iconsForMenu()));
}

// Classes of real devices, as BlueZ reports them.
TEST(MenuBarIconOption, ANewDeviceGetsThePictureOfItsClass) {
  using enum MenuBarIconOption;
  const std::pair<std::uint32_t, MenuBarIconOption> classes[] = {
      {0x240404, headset},    {0x240418, headphones},     {0x240414, horizontalSpeaker},
      {0x24041c, boombox},    {0x240428, desktopSpeaker}, {0x002540, keyboard},
      {0x002580, mouse},      {0x002508, gameController}, {0x5a020c, phone},
      {0x000000, wand},       {0x00010c, wand}, // a laptop
      {0x00250c, siriRemote}, {0x240410, wand}, // a microphone
  };
  for (const auto& [classOfDevice, icon] : classes) {
    EXPECT_EQ(iconForClassOfDevice(classOfDevice), icon) << std::hex << classOfDevice;
  }
}

} // namespace lb
