#pragma once

#include <array>
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

} // namespace lb
