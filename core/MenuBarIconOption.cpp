#include "core/MenuBarIconOption.h"

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

} // namespace lb
