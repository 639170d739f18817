#include "core/TrayTone.h"

#include <gtest/gtest.h>

namespace lb {

using Scheme = PanelSignals::Scheme;
using Tone = TrayTone::Tone;

// The most specific signal that speaks decides; "no preference" and
// silence fall through to the next. Each row silences the one that spoke
// in the row before.
TEST(TrayTone, TheMostSpecificSignalDecides) {
  const auto none = std::nullopt;
  const std::tuple<PanelSignals, Tone, std::string> cases[] = {
      {{true, false, true, Scheme::preferLight, true}, Tone::light, "GNOME Shell"},
      {{false, false, true, Scheme::preferLight, true}, Tone::dark, "Xfce's panel"},
      {{false, true, true, Scheme::preferLight, true}, Tone::light, "Xfce's panel"},
      {{false, none, true, Scheme::preferLight, true}, Tone::light, "Plasma's colours"},
      {{false, none, none, Scheme::preferLight, true}, Tone::dark, "the desktop's colour scheme"},
      {{false, none, none, Scheme::preferDark, true}, Tone::light, "the desktop's colour scheme"},
      {{false, none, none, Scheme::noPreference, true}, Tone::light, "the colour theme"},
      {{false, none, none, Scheme::noPreference, false}, Tone::dark, "the colour theme"},
      {{false, none, none, Scheme::noPreference, none}, Tone::haloed, "nothing the desktop says"},
  };
  for (const auto& [panel, tone, source] : cases) {
    const auto chosen = TrayTone::choose(panel);
    EXPECT_EQ(chosen.tone, tone) << source;
    EXPECT_EQ(chosen.source, source);
  }
}

} // namespace lb
