#pragma once

namespace lb {

// The X11 system tray: a panel that owns the selection _NET_SYSTEM_TRAY_S0
// docks the windows of tray icons.
struct XembedTray {
  // Whether a panel owns the tray's selection on the X display, asked of the
  // X server directly: asking Qt would fix its StatusNotifierItem choice now.
  // False when the application does not run on X11.
  static bool isClaimed();
};

} // namespace lb
