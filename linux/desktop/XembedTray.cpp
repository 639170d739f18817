#include "linux/desktop/XembedTray.h"

#include <QGuiApplication>

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace lb {

bool XembedTray::isClaimed() {
  auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
  if (!x11) return false;
  auto* connection = x11->connection();
  const char name[] = "_NET_SYSTEM_TRAY_S0";
  std::unique_ptr<xcb_intern_atom_reply_t, decltype(&free)> atom(
      xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 1, sizeof name - 1, name), nullptr), &free);
  if (!atom || atom->atom == XCB_NONE) return false;
  std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&free)> owner(
      xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr), &free);
  return owner && owner->owner != XCB_NONE;
}

} // namespace lb
