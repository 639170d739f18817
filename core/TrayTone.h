#pragma once

#include "core/Tunables.h"
#include "core/UserDefaults.h"
#include "ports/StatusBar.h"

#include <memory>
#include <string>

namespace lb {

// The tone of the tray's pictures: light for a dark panel, dark for a light
// one, and dark with a light halo where nothing says which the panel is.
struct TrayTone {
  enum class Tone { light, dark, haloed };
  Tone tone;
  std::string source; // "GNOME Shell", "Xfce's panel"…

  // From the most specific signal that speaks.
  static TrayTone choose(const PanelSignals& panel);
  // "light", "dark", "dark with a light halo"
  std::string describe() const;
};

// Keeps the tray's paint to the panel: the user's "TrayIconColor" when set,
// else the tone chosen from what the desktop says, followed while running.
// Each choice is logged ("Tray pictures: light, from GNOME Shell").
class TrayPainter {
public:
  TrayPainter(StatusBar& statusBar, UserDefaults& defaults, const Tunables& tunables);

private:
  void update();

  StatusBar& statusBar_;
  const Tunables& tunables_;
  TrayPaint paint_;
  std::unique_ptr<NotificationRegistration> colourChoice_;
};

} // namespace lb
