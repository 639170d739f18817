#include "core/MenuBarIconOption.h"

#include "foundation/PXRLog.h"

#include <algorithm>

namespace lb {

const std::array<MenuBarIconOptionInfo, 49>& allMenuBarIconOptions() {
  static constexpr std::array<MenuBarIconOptionInfo, 49> options{{
      {MenuBarIconOption::wand, "wand", std::nullopt, false},
      {MenuBarIconOption::airPodsPair, "airpods-pair", "AirPods", false},
      {MenuBarIconOption::airPodsPairEven, "airpods-pair-even", "AirPods", false},
      {MenuBarIconOption::airPodsPairEvenSmall, "airpods-pair-even-small", "AirPods", false},
      {MenuBarIconOption::earbuds, "airpods", std::nullopt, true},
      {MenuBarIconOption::airPodsPro, "airpods-pro", "AirPod Pro", false},
      {MenuBarIconOption::powerBeatsPro, "powerbeats-pro", "Powerbeats Pro", false},
      {MenuBarIconOption::powerBeats3, "powerbeats3", "Powerbeats3", false},
      {MenuBarIconOption::beatsX, "beats-x", "BeatsX", false},
      {MenuBarIconOption::surfaceEarbuds, "surface-earbuds", "Microsoft Surface Earbuds", false},
      {MenuBarIconOption::phone, "phone", std::nullopt, false},
      {MenuBarIconOption::beatsSolo, "beats-solo", "Beats Solo", false},
      {MenuBarIconOption::headset, "headset", std::nullopt, false},
      {MenuBarIconOption::headset2, "headset-2", std::nullopt, false},
      {MenuBarIconOption::box, "box", std::nullopt, true},
      {MenuBarIconOption::boombox, "boombox", std::nullopt, false},
      {MenuBarIconOption::airplaySpeaker, "airplay-speaker", std::nullopt, true},
      {MenuBarIconOption::horizontalSpeaker, "horizontal-speaker", std::nullopt, false},
      {MenuBarIconOption::cylinderSpeaker, "cylinder-speaker", std::nullopt, false},
      {MenuBarIconOption::conferenceSpeaker, "conference-speaker", std::nullopt, false},
      {MenuBarIconOption::desktopSpeaker, "desktop-speaker", std::nullopt, false},
      {MenuBarIconOption::mouse, "mouse", std::nullopt, true},
      {MenuBarIconOption::magicMouse, "magic-mouse", "Magic Mouse", true},
      {MenuBarIconOption::mouseButtons, "mouse-buttons", std::nullopt, true},
      {MenuBarIconOption::graphicTablet, "graphic-tablet", std::nullopt, false},
      {MenuBarIconOption::magicTrackpad2Top, "magic-trackpad-2-top", "Magic Trackpad 2", false},
      {MenuBarIconOption::magicTrackpad2Side, "magic-trackpad-2-side", "Magic Trackpad 2", false},
      {MenuBarIconOption::magicTrackpad1Side, "magic-trackpad-1-side", "Magic Trackpad 1", false},
      {MenuBarIconOption::keyboard, "keyboard", std::nullopt, false},
      {MenuBarIconOption::gameController, "game-controller", std::nullopt, false},
      {MenuBarIconOption::iPhone, "iphone", "iPhone", true},
      {MenuBarIconOption::tablet, "tablet", "iPad", true},
      {MenuBarIconOption::airPodsProEven, "airpods-pro-even", "AirPod Pro", false},
      {MenuBarIconOption::beatsStudio3Side, "beats-studio-3-side", "Beats Studio3", false},
      {MenuBarIconOption::controller, "controller", std::nullopt, false},
      {MenuBarIconOption::headphones, "headphones", std::nullopt, false},
      {MenuBarIconOption::playStation, "playstation", "PlayStation", false},
      {MenuBarIconOption::powerBeats2020, "powerbeats-2020", "Powerbeats 2020", false},
      {MenuBarIconOption::siriRemote, "siri-remote", "Siri Remote", false},
      {MenuBarIconOption::xbox, "xbox", "Xbox", false},
      {MenuBarIconOption::airpodsMax, "airpods-max", "AirPods Max", false},
      {MenuBarIconOption::aftershokzAeropex, "aftershokz-aeropex", "Aftershokz Aeropex", false},
      {MenuBarIconOption::airPods3, "airpods-3", "AirPods 3", false},
      {MenuBarIconOption::airPodsPro2, "airpods-pro-2", "AirPods Pro 2", false},
      {MenuBarIconOption::beatsFitPro, "beats-fit-pro", "Beats Fit Pro", false},
      {MenuBarIconOption::beatsStudioBuds, "beats-studio-buds", "Beats Studio Buds", false},
      {MenuBarIconOption::galaxyBudsLive, "galaxy-buds-live", "Samsung Galaxy Buds Live", false},
      {MenuBarIconOption::sonyWF1000XM4, "sony-wf-1000xm4", "Sony WF-1000XM4", false},
      {MenuBarIconOption::sonyWH1000XM4, "sony-wh-1000xm4", "Sony WH-1000XM4", false},
  }};
  return options;
}

namespace {
const MenuBarIconOptionInfo& info(MenuBarIconOption option) {
  return allMenuBarIconOptions()[static_cast<std::size_t>(option)];
}
} // namespace

std::string_view rawValue(MenuBarIconOption option) { return info(option).rawValue; }

std::optional<MenuBarIconOption> menuBarIconOption(std::string_view raw) {
  for (const auto& each : allMenuBarIconOptions()) {
    if (each.rawValue == raw) return each.option;
  }
  return std::nullopt;
}

std::string pxrDescription(MenuBarIconOption option) { return std::string(rawValue(option)); }

// The Class of Device's fields: the major class in bits 8 to 12, the minor
// class in bits 2 to 7 (for peripherals, bits 6 and 7 say keyboard or
// pointer and bits 2 to 5 the kind of other input).
MenuBarIconOption iconForClassOfDevice(std::uint32_t classOfDevice) {
  using enum MenuBarIconOption;
  const auto major = (classOfDevice >> 8) & 0x1f;
  const auto minor = (classOfDevice >> 2) & 0x3f;
  switch (major) {
  case 1: return minor == 7 ? tablet : wand; // a computer; 7 is a tablet
  case 2: return phone;
  case 4: // audio and video, by the assigned numbers' minor classes
    switch (minor) {
    case 1:                            // wearable headset
    case 2: return headset;            // hands-free
    case 4: return wand;               // a microphone
    case 5:                            // loudspeaker
    case 8:                            // car audio
    case 15: return horizontalSpeaker; // a display with speakers
    case 7: return boombox;            // portable audio
    case 9: return box;                // set-top box
    case 10: return desktopSpeaker;    // hi-fi
    case 11:
    case 12:
    case 13:
    case 14: return wand; // video
    case 16: return conferenceSpeaker;
    case 18: return gameController; // gaming toy
    default: return headphones;     // headphones, or uncategorised
    }
  case 5: { // peripherals
    if ((minor >> 4) & 1) return keyboard;
    if ((minor >> 5) & 1) return mouse;
    const auto other = minor & 0xf;
    if (other == 1 || other == 2) return gameController; // joystick, gamepad
    if (other == 3) return siriRemote;                   // remote control
    if (other == 5 || other == 7) return graphicTablet;
    return wand;
  }
  case 8: return minor == 4 ? gameController : wand; // toys; 4 is a game
  default: return wand;
  }
}

std::optional<std::string_view> toolTip(MenuBarIconOption option) { return info(option).toolTip; }
bool isNarrow(MenuBarIconOption option) { return info(option).narrow; }

std::string batteryImageName(int batteryLevel) {
  const int t = batteryLevel + 5;
  const int step = t <= 9 ? 0 : std::min(t / 10, 10);
  return "battery-" + std::to_string(step);
}

const std::array<std::optional<MenuBarIconOption>, 59>& iconsForMenu() {
  using O = MenuBarIconOption;
  constexpr std::optional<O> separator;
  static constexpr std::array<std::optional<O>, 59> menu{
      O::airPodsPair,
      O::airPodsPairEven,
      O::airPodsPairEvenSmall,
      O::airPods3,
      separator,
      O::airPodsPro,
      O::airPodsProEven,
      O::airPodsPro2,
      O::airpodsMax,
      separator,
      O::powerBeats3,
      O::powerBeatsPro,
      O::powerBeats2020,
      O::beatsX,
      O::beatsFitPro,
      O::beatsStudioBuds,
      O::beatsSolo,
      O::beatsStudio3Side,
      separator,
      O::aftershokzAeropex,
      O::surfaceEarbuds,
      O::galaxyBudsLive,
      O::sonyWF1000XM4,
      O::sonyWH1000XM4,
      separator,
      O::wand,
      O::earbuds,
      O::headphones,
      O::phone,
      O::headset,
      O::headset2,
      separator,
      O::box,
      O::boombox,
      O::airplaySpeaker,
      O::horizontalSpeaker,
      O::cylinderSpeaker,
      O::conferenceSpeaker,
      O::desktopSpeaker,
      separator,
      O::magicMouse,
      O::mouse,
      O::mouseButtons,
      separator,
      O::magicTrackpad1Side,
      O::magicTrackpad2Top,
      O::magicTrackpad2Side,
      separator,
      O::keyboard,
      O::graphicTablet,
      separator,
      O::siriRemote,
      O::gameController,
      O::controller,
      O::playStation,
      O::xbox,
      separator,
      O::iPhone,
      O::tablet,
  };
  return menu;
}

std::vector<std::optional<MenuBarIconOption>> availableIconsForMenu(Images& images) {
  std::vector<std::optional<MenuBarIconOption>> available;
  for (const auto& entry : iconsForMenu()) {
    if (entry) {
      if (!connectedImage(images, *entry)) PXR_LOG_ERROR("No connected image for", *entry);
      if (!images.named(std::string(rawValue(*entry)))) PXR_LOG_ERROR("No image for", *entry);
    }
    available.push_back(entry);
  }
  return available;
}

std::shared_ptr<Image> connectedImage(Images& images, MenuBarIconOption option) {
  const std::string raw(rawValue(option));
  auto image = images.named(raw + "-fill");
  if (!image) image = images.named(raw);
  if (image) image->setTemplate(true);
  return image;
}

std::shared_ptr<Image> connectedImage(Images& images, MenuBarIconOption option, double fraction) {
  auto icon = connectedImage(images, option);
  if (!icon) return nullptr;
  auto result = images.compose(icon->size(), {{icon, 0, 0, fraction}});
  result->setTemplate(true);
  return result;
}

std::shared_ptr<Image> image(Images& images, MenuBarIconOption option, int batteryLevel, bool low, double fraction) {
  const auto gaugeName = batteryImageName(batteryLevel);
  auto gauge = images.named(gaugeName);
  auto icon = connectedImage(images, option);
  if (!gauge || !icon) {
    PXR_LOG_ERROR("Missing image: " + gaugeName);
    return icon;
  }
  gauge->setTemplate(true);
  gauge->setWarning(low);
  const auto iconSize = icon->size(), gaugeSize = gauge->size();
  const double inset = isNarrow(option) ? 4.0 : 2.0;
  auto result = images.compose({gaugeSize.width + iconSize.width + 3.0, std::max(gaugeSize.height, iconSize.height)},
                               {{icon, 1.0, 0.0, fraction}, {gauge, iconSize.width - inset, 3.0, fraction}});
  result->setTemplate(true);
  return result;
}

} // namespace lb
