#include "linux/desktop/DesktopNotifications.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QImage>
#include <QPainter>
#include <QVariantMap>

namespace lb {

namespace {

// The raw picture the service takes: (iiibiiay), RGBA rows of 8-bit samples.
struct ImageData {
  QImage image;
};

QDBusArgument& operator<<(QDBusArgument& argument, const ImageData& data) {
  const auto& image = data.image;
  argument.beginStructure();
  argument << image.width() << image.height() << int(image.bytesPerLine()) << true << 8 << 4
           << QByteArray(reinterpret_cast<const char*>(image.constBits()), int(image.sizeInBytes()));
  argument.endStructure();
  return argument;
}

// Only sent, never received.
const QDBusArgument& operator>>(const QDBusArgument& argument, ImageData&) { return argument; }

QImage onTile(const QImage& picture) {
  QImage tile(picture.size(), QImage::Format_RGBA8888);
  tile.fill(Qt::transparent);
  QPainter painter(&tile);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Qt::white);
  painter.drawRoundedRect(QRectF(tile.rect()), 20, 20, Qt::RelativeSize);
  painter.drawImage(0, 0, picture);
  return tile;
}

} // namespace

} // namespace lb

Q_DECLARE_METATYPE(lb::ImageData)

namespace lb {

void DesktopNotifications::show(const Notification& notification, Id replacing, Done done) {
  static const auto registered = qDBusRegisterMetaType<ImageData>();
  (void)registered;
  QVariantMap hints{{"urgency", QVariant::fromValue(uchar(notification.critical ? 2 : 1))},
                    {"desktop-entry", QString("lanternbud")}};
  QImage picture;
  if (!notification.png.empty() && picture.loadFromData(notification.png.data(), int(notification.png.size()), "PNG")) {
    hints.insert("image-data", QVariant::fromValue(ImageData{onTile(picture)}));
  }
  auto call = QDBusMessage::createMethodCall("org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                                             "org.freedesktop.Notifications", "Notify");
  call << QString("Lanternbud") << uint(replacing) << QString("lanternbud")
       << QString::fromStdString(notification.summary) << QString::fromStdString(notification.body) << QStringList()
       << hints << -1;
  auto* watcher = new QDBusPendingCallWatcher(session_.asyncCall(call), &calls_);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, [done = std::move(done)](QDBusPendingCallWatcher* w) {
    QDBusPendingReply<uint> reply = *w;
    w->deleteLater();
    if (reply.isError()) {
      done(Failure{reply.error().message().toStdString()});
    } else {
      done(Id(reply.value()));
    }
  });
}

} // namespace lb
