#include "ui/DBusMenuExporter.h"

#include <QGuiApplication>
#include <QTimer>

namespace lb {

namespace {

// dbusmenu marks a mnemonic with "_": a title is shown as it stands.
QString menuLabel(const StatusMenuEntry& entry) {
  return entry.title ? QString::fromStdString(entry.title()).replace("_", "__") : QString();
}

} // namespace

DBusMenuExporter::DBusMenuExporter(QObject* object) : QDBusAbstractAdaptor(object) {}

QString DBusMenuExporter::textDirection() const {
  return QGuiApplication::layoutDirection() == Qt::RightToLeft ? "rtl" : "ltr";
}

void DBusMenuExporter::setEntries(std::vector<StatusMenuEntry> entries) {
  entries_ = std::move(entries);
  labels_.clear();
  for (const auto& entry : entries_) labels_.push_back(menuLabel(entry));
  emit LayoutUpdated(++revision_, 0);
}

bool DBusMenuExporter::refresh() {
  QList<DBusMenuProperties> changed;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    auto label = menuLabel(entries_[i]);
    if (label == labels_[i]) continue;
    labels_[i] = std::move(label);
    changed.append({int(i) + 1, {{"label", labels_[i]}}});
  }
  if (!changed.isEmpty()) emit ItemsPropertiesUpdated(changed, {});
  return !changed.isEmpty();
}

QVariantMap DBusMenuExporter::properties(int id, const QStringList& names) const {
  QVariantMap all;
  if (id == 0) {
    all["children-display"] = "submenu";
  } else {
    const auto& entry = entries_[std::size_t(id) - 1];
    if (!entry.title) {
      all["type"] = "separator";
    } else {
      all["label"] = labels_[std::size_t(id) - 1];
      if (!entry.action) all["enabled"] = false;
    }
  }
  if (names.isEmpty()) return all;
  QVariantMap asked;
  for (const auto& name : names) {
    if (all.contains(name)) asked[name] = all[name];
  }
  return asked;
}

uint DBusMenuExporter::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                                 DBusMenuLayout& layout) {
  layout = {};
  if (!has(parentId)) return revision_;
  layout.id = parentId;
  layout.properties = properties(parentId, propertyNames);
  if (parentId == 0 && recursionDepth != 0) {
    for (int id = 1; id <= int(entries_.size()); ++id) layout.children.append({id, properties(id, propertyNames), {}});
  }
  return revision_;
}

QList<DBusMenuProperties> DBusMenuExporter::GetGroupProperties(const QList<int>& ids, const QStringList& names) {
  QList<DBusMenuProperties> found;
  for (int id : ids) {
    if (has(id)) found.append({id, properties(id, names)});
  }
  return found;
}

QDBusVariant DBusMenuExporter::GetProperty(int id, const QString& name) {
  return QDBusVariant(has(id) ? properties(id).value(name) : QVariant());
}

bool DBusMenuExporter::activate(int id, const QString& eventId) {
  if (!has(id)) return false;
  if (eventId != "clicked" || id == 0) return true;
  const auto action = entries_[std::size_t(id) - 1].action;
  // The action may quit or open a window: not inside the host's call.
  if (action) QTimer::singleShot(0, this, action);
  return true;
}

void DBusMenuExporter::Event(int id, const QString& eventId, const QDBusVariant&, uint) { activate(id, eventId); }

QList<int> DBusMenuExporter::EventGroup(const QList<DBusMenuEvent>& events) {
  QList<int> unknown;
  for (const auto& event : events) {
    if (!activate(event.id, event.kind)) unknown.append(event.id);
  }
  return unknown;
}

bool DBusMenuExporter::AboutToShow(int) { return refresh(); }

QList<int> DBusMenuExporter::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
  for (int id : ids) {
    if (!has(id)) idErrors.append(id);
  }
  return refresh() ? QList<int>{0} : QList<int>{};
}

} // namespace lb
