#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QIcon>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace lb {

// The structures StatusNotifierItem and dbusmenu send, as the tray hosts
// read them.

// One size of a picture: ARGB32 pixels in network byte order, (iiay).
struct SniPixmap {
  int width = 0;
  int height = 0;
  QByteArray bytes;
  bool operator==(const SniPixmap&) const = default;
};
using SniPixmaps = QList<SniPixmap>;
// Every size the icon holds, as drawn.
SniPixmaps sniPixmaps(const QIcon& icon);

// (sa(iiay)ss): an icon name, pictures, a title and a text.
struct SniToolTip {
  QString iconName;
  SniPixmaps pixmaps;
  QString title;
  QString text;
};

// A menu entry with its properties and entries below it, (ia{sv}av).
struct DBusMenuLayout {
  int id = 0;
  QVariantMap properties;
  QList<DBusMenuLayout> children;
};

// An entry's properties, (ia{sv}).
struct DBusMenuProperties {
  int id = 0;
  QVariantMap properties;
};

// An entry's removed properties, (ias).
struct DBusMenuRemovedProperties {
  int id = 0;
  QStringList names;
};

// What happened to an entry, (isvu): "clicked", "opened"…
struct DBusMenuEvent {
  int id = 0;
  QString kind;
  QDBusVariant data;
  uint timestamp = 0;
};

// Once, before the first item is exported.
void registerStatusNotifierTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const SniPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, SniPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const SniToolTip& tip);
const QDBusArgument& operator>>(const QDBusArgument& argument, SniToolTip& tip);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuRemovedProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuRemovedProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event);

} // namespace lb

Q_DECLARE_METATYPE(lb::SniPixmap)
Q_DECLARE_METATYPE(lb::SniToolTip)
Q_DECLARE_METATYPE(lb::DBusMenuLayout)
Q_DECLARE_METATYPE(lb::DBusMenuProperties)
Q_DECLARE_METATYPE(lb::DBusMenuRemovedProperties)
Q_DECLARE_METATYPE(lb::DBusMenuEvent)
