#include "ui/DesktopNotification.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QVariantMap>

namespace lb {

void sendDesktopNotification(const QDBusConnection& session, const std::string& summary, const std::string& body) {
  auto call = QDBusMessage::createMethodCall("org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                                             "org.freedesktop.Notifications", "Notify");
  call << QString("Lanternbud") << 0u << QString("bluetooth") << QString::fromStdString(summary)
       << QString::fromStdString(body) << QStringList() << QVariantMap() << -1;
  session.asyncCall(call);
}

} // namespace lb
