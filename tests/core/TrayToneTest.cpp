#include "core/TrayTone.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/SimulatedPlatform.h"

#include <gtest/gtest.h>

namespace lb {

using Scheme = PanelSignals::Scheme;
using Tone = TrayTone::Tone;

// The most specific signal that speaks decides; "no preference" and
// silence fall through to the next. Each step silences the one that spoke.
TEST(TrayTone, TheMostSpecificSignalDecides) {
  PanelSignals panel{true, false, true, Scheme::preferLight, true};
  auto chosen = [&panel] {
    const auto tone = TrayTone::choose(panel);
    return std::pair{tone.tone, tone.source};
  };
  EXPECT_EQ(chosen(), std::pair(Tone::light, std::string("GNOME Shell")));
  panel.gnomeShell = false;
  EXPECT_EQ(chosen(), std::pair(Tone::dark, std::string("Xfce's panel")));
  panel.xfcePanelDark = true;
  EXPECT_EQ(chosen(), std::pair(Tone::light, std::string("Xfce's panel")));
  panel.xfcePanelDark.reset();
  EXPECT_EQ(chosen(), std::pair(Tone::light, std::string("Plasma's colours")));
  panel.plasmaDark.reset();
  EXPECT_EQ(chosen(), std::pair(Tone::dark, std::string("the desktop's colour scheme")));
  panel.portalScheme = Scheme::preferDark;
  EXPECT_EQ(chosen(), std::pair(Tone::light, std::string("the desktop's colour scheme")));
  panel.portalScheme = Scheme::noPreference;
  EXPECT_EQ(chosen(), std::pair(Tone::light, std::string("the colour theme")));
  panel.paletteDark = false;
  EXPECT_EQ(chosen(), std::pair(Tone::dark, std::string("the colour theme")));
  panel.paletteDark.reset();
  EXPECT_EQ(chosen(), std::pair(Tone::haloed, std::string("nothing the desktop says")));
}

// The paint follows a change of the colour scheme while running, and the
// user's colour wins while it is set.
TEST(TrayTone, ThePainterFollowsTheDesktopAndTheUsersColour) {
  test::CapturedLog log({"LogLaunch"});
  InMemorySettingsStore store;
  SimulatedPlatform sim(store);
  TrayPainter painter(sim.statusBar, sim.defaults, sim.tunables);
  EXPECT_EQ(sim.statusBar.paint, (TrayPaint{"#000000", true}));
  EXPECT_TRUE(log.contains("Tray pictures: dark with a light halo, from nothing the desktop says"));

  sim.statusBar.panel.portalScheme = Scheme::preferDark;
  sim.statusBar.panelChanged();
  EXPECT_EQ(sim.statusBar.paint, (TrayPaint{"#ffffff", false}));
  EXPECT_TRUE(log.contains("Tray pictures: light, from the desktop's colour scheme"));

  sim.defaults.setValue("TrayIconColor", "#ff8800");
  EXPECT_EQ(sim.statusBar.paint, (TrayPaint{"#ff8800", false}));
  sim.statusBar.panel.portalScheme = Scheme::preferLight;
  sim.statusBar.panelChanged();
  EXPECT_EQ(sim.statusBar.paint.colour, "#ff8800");
  sim.defaults.removeValue("TrayIconColor");
  EXPECT_EQ(sim.statusBar.paint, (TrayPaint{"#000000", false}));
}

} // namespace lb
