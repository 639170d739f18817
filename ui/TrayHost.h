#pragma once

#include "foundation/Clock.h"

#include <QDBusConnection>

#include <functional>
#include <string>
#include <string_view>

namespace lb {

// Which tray the desktop offers, decided once at start: StatusNotifierItem
// where the session has a watcher, else XEmbed through Qt (which would
// itself speak StatusNotifierItem to a watcher there at its first icon). A
// program started with the session may come before the panel, so a missing
// watcher is awaited a while, unless an XEmbed tray is already there.
struct TrayHost {
  enum class Kind { statusNotifierItem, xembed, none };
  // The bus name of the session's StatusNotifierItem host registry.
  static constexpr const char* watcherService = "org.kde.StatusNotifierWatcher";

  // Asked of a GUI application on a display; the caller knows whether it
  // has one, and how to see an XEmbed tray there.
  static Kind find(const QDBusConnection& session, Seconds wait, const std::function<bool()>& hasXembedTray);
  // "StatusNotifierItem over D-Bus", "XEmbed system tray", "no tray"
  static std::string describe(Kind kind);
  // Why there are no tray icons and how to get them, in English: the key of
  // what the user is told.
  static std::string_view missingAdvice(bool hasDisplay);
};

} // namespace lb
