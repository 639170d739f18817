#pragma once

#include "ports/Images.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lb {

// The catalogue of device pictures. A device stores its choice as the raw
// value, which is also the base name of the picture's images.
enum class MenuBarIconOption {
  wand,
  airPodsPair,
  airPodsPairEven,
  airPodsPairEvenSmall,
  earbuds,
  airPodsPro,
  powerBeatsPro,
  powerBeats3,
  beatsX,
  surfaceEarbuds,
  phone,
  beatsSolo,
  headset,
  headset2,
  box,
  boombox,
  airplaySpeaker,
  horizontalSpeaker,
  cylinderSpeaker,
  conferenceSpeaker,
  desktopSpeaker,
  mouse,
  magicMouse,
  mouseButtons,
  graphicTablet,
  magicTrackpad2Top,
  magicTrackpad2Side,
  magicTrackpad1Side,
  keyboard,
  gameController,
  iPhone,
  tablet,
  airPodsProEven,
  beatsStudio3Side,
  controller,
  headphones,
  playStation,
  powerBeats2020,
  siriRemote,
  xbox,
  airpodsMax,
  aftershokzAeropex,
  airPods3,
  airPodsPro2,
  beatsFitPro,
  beatsStudioBuds,
  galaxyBudsLive,
  sonyWF1000XM4,
  sonyWH1000XM4
};

struct MenuBarIconOptionInfo {
  MenuBarIconOption option;
  std::string_view rawValue;
  std::optional<std::string_view> toolTip; // shown on the icon menu's item
  bool narrow;                             // a tall, thin picture
};

// Every option, in declaration order.
const std::array<MenuBarIconOptionInfo, 49>& allMenuBarIconOptions();

std::string_view rawValue(MenuBarIconOption option);

// The option with this raw value, if any.
std::optional<MenuBarIconOption> menuBarIconOption(std::string_view rawValue);

std::string pxrDescription(MenuBarIconOption option);

// The picture that fits a Bluetooth Class of Device: headphones for
// headphones, a headset for a headset, a keyboard for a keyboard; "wand"
// when the class says nothing that fits.
MenuBarIconOption iconForClassOfDevice(std::uint32_t classOfDevice);

std::optional<std::string_view> toolTip(MenuBarIconOption option);
// A tall, thin picture: the battery gauge overlaps it further.
bool isNarrow(MenuBarIconOption option);

// The gauge for a level: "battery-0" for 0 to 4 %, "battery-1" for 5 to 14 %,
// up to "battery-10" for 95 % and more.
std::string batteryImageName(int batteryLevel);

// The icon menu: every option once, in groups; none marks a separator.
const std::array<std::optional<MenuBarIconOption>, 59>& iconsForMenu();
// The same, with a line in the log for each option whose artwork is missing.
std::vector<std::optional<MenuBarIconOption>> availableIconsForMenu(Images& images);

// The picture of a connected device: the "-fill" artwork, or else the plain
// one, as a template image.
std::shared_ptr<Image> connectedImage(Images& images, MenuBarIconOption option);
std::shared_ptr<Image> connectedImage(Images& images, MenuBarIconOption option, double fraction);
// The connected picture with the battery gauge at its right, overlapping it;
// a `low` gauge is drawn in the warning colour.
std::shared_ptr<Image> image(Images& images, MenuBarIconOption option, int batteryLevel, bool low, double fraction);

} // namespace lb
