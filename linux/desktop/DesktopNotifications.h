#pragma once

#include "ports/Notifications.h"

#include <QDBusConnection>
#include <QObject>

namespace lb {

// The session's notification service, org.freedesktop.Notifications. The
// picture goes as the "image-data" hint, so that it needs no file, on a
// white tile, so that a black silhouette reads on a dark notification too;
// a critical notification has urgency 2. Where no service runs, the call's
// error is the answer.
class DesktopNotifications final : public Notifications {
public:
  explicit DesktopNotifications(QDBusConnection session) : session_(std::move(session)) {}

  void show(const Notification& notification, Id replacing, Done done) override;

private:
  QDBusConnection session_;
  QObject calls_; // the calls awaiting their answer, which go with the adapter
};

} // namespace lb
