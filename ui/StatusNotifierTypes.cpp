#include "ui/StatusNotifierTypes.h"

#include <QDBusMetaType>
#include <QImage>
#include <QPixmap>
#include <QtEndian>

#include <algorithm>

namespace lb {

SniPixmaps sniPixmaps(const QIcon& icon) {
  SniPixmaps pixmaps;
  auto sizes = icon.availableSizes();
  std::sort(sizes.begin(), sizes.end(), [](QSize a, QSize b) { return a.height() < b.height(); });
  for (const QSize size : sizes) {
    const QImage image = icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32);
    SniPixmap pixmap{image.width(), image.height(), QByteArray(int(image.sizeInBytes()), Qt::Uninitialized)};
    const auto* from = reinterpret_cast<const quint32*>(image.constBits());
    auto* to = reinterpret_cast<quint32*>(pixmap.bytes.data());
    for (qsizetype i = 0; i < image.width() * image.height(); ++i) to[i] = qToBigEndian(from[i]);
    pixmaps.append(std::move(pixmap));
  }
  return pixmaps;
}

void registerStatusNotifierTypes() {
  qDBusRegisterMetaType<SniPixmap>();
  qDBusRegisterMetaType<SniPixmaps>();
  qDBusRegisterMetaType<SniToolTip>();
  qDBusRegisterMetaType<DBusMenuLayout>();
  qDBusRegisterMetaType<DBusMenuProperties>();
  qDBusRegisterMetaType<QList<DBusMenuProperties>>();
  qDBusRegisterMetaType<DBusMenuRemovedProperties>();
  qDBusRegisterMetaType<QList<DBusMenuRemovedProperties>>();
  qDBusRegisterMetaType<DBusMenuEvent>();
  qDBusRegisterMetaType<QList<DBusMenuEvent>>();
}

QDBusArgument& operator<<(QDBusArgument& argument, const SniPixmap& pixmap) {
  argument.beginStructure();
  argument << pixmap.width << pixmap.height << pixmap.bytes;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, SniPixmap& pixmap) {
  argument.beginStructure();
  argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const SniToolTip& tip) {
  argument.beginStructure();
  argument << tip.iconName << tip.pixmaps << tip.title << tip.text;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, SniToolTip& tip) {
  argument.beginStructure();
  argument >> tip.iconName >> tip.pixmaps >> tip.title >> tip.text;
  argument.endStructure();
  return argument;
}

// The children go as variants: dbusmenu's layout nests to any depth.
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayout& layout) {
  argument.beginStructure();
  argument << layout.id << layout.properties;
  argument.beginArray(QMetaType::fromType<QDBusVariant>());
  for (const auto& child : layout.children) argument << QDBusVariant(QVariant::fromValue(child));
  argument.endArray();
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayout& layout) {
  argument.beginStructure();
  argument >> layout.id >> layout.properties;
  layout.children.clear();
  argument.beginArray();
  while (!argument.atEnd()) {
    QDBusVariant child;
    argument >> child;
    DBusMenuLayout entry;
    child.variant().value<QDBusArgument>() >> entry;
    layout.children.append(std::move(entry));
  }
  argument.endArray();
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuProperties& item) {
  argument.beginStructure();
  argument << item.id << item.properties;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuProperties& item) {
  argument.beginStructure();
  argument >> item.id >> item.properties;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuRemovedProperties& item) {
  argument.beginStructure();
  argument << item.id << item.names;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuRemovedProperties& item) {
  argument.beginStructure();
  argument >> item.id >> item.names;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event) {
  argument.beginStructure();
  argument << event.id << event.kind << event.data << event.timestamp;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event) {
  argument.beginStructure();
  argument >> event.id >> event.kind >> event.data >> event.timestamp;
  argument.endStructure();
  return argument;
}

} // namespace lb
