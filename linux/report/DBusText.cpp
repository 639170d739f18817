#include "linux/report/DBusText.h"

#include "foundation/Printing.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusVariant>
#include <QStringList>

namespace lb {

namespace {

QString argumentText(const QDBusArgument& argument) {
  QStringList items;
  switch (argument.currentType()) {
  case QDBusArgument::ArrayType:
    argument.beginArray();
    while (!argument.atEnd()) items << argumentText(argument);
    argument.endArray();
    return "[" + items.join(", ") + "]";
  case QDBusArgument::MapType:
    argument.beginMap();
    while (!argument.atEnd()) {
      argument.beginMapEntry();
      const auto key = argumentText(argument);
      items << key + ": " + argumentText(argument);
      argument.endMapEntry();
    }
    argument.endMap();
    return "{" + items.join(", ") + "}";
  case QDBusArgument::StructureType:
    argument.beginStructure();
    while (!argument.atEnd()) items << argumentText(argument);
    argument.endStructure();
    return "(" + items.join(", ") + ")";
  default: return dbusText(argument.asVariant());
  }
}

} // namespace

QString dbusText(const QVariant& value) {
  const int type = value.userType();
  if (type == qMetaTypeId<QDBusArgument>()) return argumentText(value.value<QDBusArgument>());
  if (type == qMetaTypeId<QDBusVariant>()) return dbusText(value.value<QDBusVariant>().variant());
  if (type == qMetaTypeId<QDBusObjectPath>()) return value.value<QDBusObjectPath>().path();
  if (type == qMetaTypeId<QDBusSignature>()) return value.value<QDBusSignature>().signature();
  if (type == QMetaType::QByteArray) return QString::fromLatin1(value.toByteArray().toHex(' '));
  // A device's name is outside text: it must not begin a line of the report.
  const auto printable = [](const QString& text) { return QString::fromStdString(pxrPrintable(text.toStdString())); };
  if (type == QMetaType::QStringList) return printable("[" + value.toStringList().join(", ") + "]");
  return printable(value.toString());
}

} // namespace lb
