#include "core/TrayTone.h"

#include "core/LogAreas.h"

namespace lb {

namespace {

TrayTone darkOr(bool dark, std::string source) {
  return {dark ? TrayTone::Tone::light : TrayTone::Tone::dark, std::move(source)};
}

} // namespace

TrayTone TrayTone::choose(const PanelSignals& panel) {
  using Scheme = PanelSignals::Scheme;
  if (panel.gnomeShell) return {Tone::light, "GNOME Shell"};
  if (panel.xfcePanelDark) return darkOr(*panel.xfcePanelDark, "Xfce's panel");
  if (panel.plasmaDark) return darkOr(*panel.plasmaDark, "Plasma's colours");
  if (panel.portalScheme && *panel.portalScheme != Scheme::noPreference) {
    return darkOr(*panel.portalScheme == Scheme::preferDark, "the desktop's colour scheme");
  }
  if (panel.paletteDark) return darkOr(*panel.paletteDark, "the colour theme");
  return {Tone::haloed, "nothing the desktop says"};
}

std::string TrayTone::describe() const {
  switch (tone) {
  case Tone::light: return "light";
  case Tone::dark: return "dark";
  case Tone::haloed: return "dark with a light halo";
  }
  return "dark";
}

TrayPainter::TrayPainter(StatusBar& statusBar, UserDefaults& defaults, const Tunables& tunables)
    : statusBar_(statusBar), tunables_(tunables) {
  statusBar_.watchPanel([this] { update(); });
  colourChoice_ = defaults.addChangeListener([this](const std::string& key) {
    if (key == tunable::TrayIconColor.key) update();
  });
  update();
}

void TrayPainter::update() {
  const auto chosen = tunables_(tunable::TrayIconColor);
  TrayPaint paint;
  std::string said;
  if (!chosen.empty()) {
    paint = {chosen, false};
    said = chosen + ", from TrayIconColor";
  } else {
    const auto tone = TrayTone::choose(statusBar_.panelSignals());
    paint = {tone.tone == TrayTone::Tone::light ? "#ffffff" : "#000000", tone.tone == TrayTone::Tone::haloed};
    said = tone.describe() + ", from " + tone.source;
  }
  if (paint == paint_) return;
  paint_ = paint;
  PXR_LOG(launchLog(), "Tray pictures: " + said);
  statusBar_.setPaint(paint_);
}

} // namespace lb
