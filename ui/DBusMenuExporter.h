#pragma once

#include "ports/StatusBar.h"
#include "ui/StatusNotifierTypes.h"

#include <QDBusAbstractAdaptor>

#include <vector>

namespace lb {

// A device's menu over com.canonical.dbusmenu, which tray hosts draw
// themselves: one level of entries below the root (ID 0), entry i with ID
// i + 1. The host hears of a new layout, and of titles that changed when
// asked to refresh or as the menu opens.
class DBusMenuExporter final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
  Q_PROPERTY(uint Version READ version)
  Q_PROPERTY(QString TextDirection READ textDirection)
  Q_PROPERTY(QString Status READ status)
  Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
  explicit DBusMenuExporter(QObject* object);

  void setEntries(std::vector<StatusMenuEntry> entries);
  // Reads the titles again and tells the host of those that changed;
  // whether any did.
  bool refresh();

  uint version() const { return 3; }
  QString textDirection() const;
  QString status() const { return "normal"; }
  QStringList iconThemePath() const { return {}; }

public slots:
  uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames, lb::DBusMenuLayout& layout);
  QList<lb::DBusMenuProperties> GetGroupProperties(const QList<int>& ids, const QStringList& propertyNames);
  QDBusVariant GetProperty(int id, const QString& name);
  void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
  QList<int> EventGroup(const QList<lb::DBusMenuEvent>& events);
  bool AboutToShow(int id);
  QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

signals:
  void ItemsPropertiesUpdated(const QList<lb::DBusMenuProperties>& updated,
                              const QList<lb::DBusMenuRemovedProperties>& removed);
  void LayoutUpdated(uint revision, int parent);
  void ItemActivationRequested(int id, uint timestamp);

private:
  bool has(int id) const { return id >= 0 && std::size_t(id) <= entries_.size(); }
  QVariantMap properties(int id, const QStringList& names = {}) const;
  // Runs the entry's action after the host's call is answered.
  bool activate(int id, const QString& eventId);

  std::vector<StatusMenuEntry> entries_;
  std::vector<QString> labels_; // as the host last heard them
  uint revision_ = 1;
};

} // namespace lb
