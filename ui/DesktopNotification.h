#pragma once

#include <QDBusConnection>

#include <string>

namespace lb {

// Sends a desktop notification through the session's notification service,
// without waiting for it; where there is none, nothing is shown.
void sendDesktopNotification(const QDBusConnection& session, const std::string& summary, const std::string& body);

} // namespace lb
