#include "scripting/ScriptingService.h"

#include "foundation/BluetoothAddress.h"
#include "foundation/SettingsJson.h"
#include "scripting/ScriptingDeviceObject.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QTimer>

namespace lb {

namespace {

// The application interface; Qt answers Introspect and the properties.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.lanternbud.Lanternbud")
  Q_PROPERTY(QList<QDBusObjectPath> Devices READ devices)

public:
  explicit ApplicationAdaptor(ScriptingService* service) : QDBusAbstractAdaptor(service), service_(*service) {}

  QList<QDBusObjectPath> devices() const { return service_.devices(); }

public slots:
  void ShowPreferences() { service_.showPreferences(); }
  void Quit() { service_.quit(); }
  QDBusObjectPath FindDevice(const QString& query) { return service_.findDevice(query); }
  QString GetSetting(const QString& key) { return service_.getSetting(key); }
  void SetSetting(const QString& key, const QString& json) { service_.setSetting(key, json); }
  void UnsetSetting(const QString& key) { service_.unsetSetting(key); }

private:
  ScriptingService& service_;
};

} // namespace

ScriptingService::ScriptingService(QDBusConnection bus, AppDelegate& app, UserDefaults& defaults)
    : bus_(std::move(bus)), app_(app), defaults_(defaults) {
  new ApplicationAdaptor(this);
  bus_.registerObject(bus::applicationPath, this, QDBusConnection::ExportAdaptors);
  bus_.registerVirtualObject(bus::deviceRoot, &tree_, QDBusConnection::SubPath);
  if (auto* registry = app_.deviceSettingManager())
    listening_ = registry->addChangeListener([this] { scheduleRefresh(); });
  refresh();
}

ScriptingService::~ScriptingService() {
  listening_.reset();
  bus_.unregisterObject(bus::deviceRoot);
  bus_.unregisterObject(bus::applicationPath);
}

QString ScriptingService::devicePath(std::int64_t ID) { return QString(bus::deviceRoot) + "/" + QString::number(ID); }

QList<QDBusObjectPath> ScriptingService::devices() const {
  QList<QDBusObjectPath> paths;
  if (auto* registry = app_.deviceSettingManager()) {
    for (const auto& setting : registry->deviceSettingList())
      paths.append(QDBusObjectPath(devicePath(setting->deviceID())));
  }
  return paths;
}

// A burst of redraws makes one comparison, once the burst is over.
void ScriptingService::scheduleRefresh() {
  if (refreshPending_) return;
  refreshPending_ = true;
  QTimer::singleShot(0, this, [this] {
    refreshPending_ = false;
    refresh();
  });
}

void ScriptingService::refresh() {
  std::map<std::int64_t, std::shared_ptr<DeviceSetting>> current;
  if (auto* registry = app_.deviceSettingManager()) {
    for (const auto& setting : registry->deviceSettingList()) current.emplace(setting->deviceID(), setting);
  }
  std::erase_if(objects_, [&](const auto& entry) { return !current.contains(entry.first); });
  for (const auto& [ID, setting] : current) {
    auto& object = objects_[ID];
    if (!object) {
      object = std::make_unique<ScriptingDeviceObject>(setting);
      object->shown = object->values();
      continue;
    }
    const auto now = object->values();
    QVariantMap changed;
    for (auto value = now.begin(); value != now.end(); ++value) {
      if (object->shown.value(value.key()) != value.value()) changed.insert(value.key(), value.value());
    }
    object->shown = now;
    if (!changed.isEmpty()) announce(devicePath(ID), bus::deviceInterface, changed);
  }
  auto list = devices();
  if (list != shownList_) {
    shownList_ = list;
    announce(bus::applicationPath, bus::applicationInterface, {{"Devices", QVariant::fromValue(list)}});
  }
}

void ScriptingService::announce(const QString& path, const QString& interface, const QVariantMap& changed) {
  auto signal = QDBusMessage::createSignal(path, "org.freedesktop.DBus.Properties", "PropertiesChanged");
  signal << interface << changed << QStringList();
  bus_.send(signal);
}

void ScriptingService::showPreferences() { app_.applicationShouldHandleReopen(); }

void ScriptingService::quit() { app_.quit(); }

QDBusObjectPath ScriptingService::findDevice(const QString& query) {
  if (auto* registry = app_.deviceSettingManager()) {
    bool isNumber = false;
    const auto number = query.toLongLong(&isNumber);
    for (const auto& setting : registry->deviceSettingList()) {
      const bool matches = (isNumber && setting->deviceID() == number) ||
                           QString::fromStdString(setting->scriptingName()).compare(query, Qt::CaseInsensitive) == 0 ||
                           sameBluetoothAddress(setting->scriptingAddress().value_or(""), query.toStdString());
      if (matches) return QDBusObjectPath(devicePath(setting->deviceID()));
    }
  }
  sendErrorReply(QString(bus::errorPrefix) + "NoSuchDevice",
                 "No device has the ID, name or address \"" + query + "\".");
  return {};
}

QString ScriptingService::getSetting(const QString& key) {
  auto value = defaults_.object(key.toStdString());
  if (!value) {
    sendErrorReply(QString(bus::errorPrefix) + "NotSet", "\"" + key + "\" is not set; its default applies.");
    return {};
  }
  return QString::fromStdString(SettingsJson::write(*value)).trimmed();
}

void ScriptingService::setSetting(const QString& key, const QString& json) {
  std::string error;
  auto value = SettingsJson::parse(json.toStdString(), error);
  if (key.isEmpty() || !value) {
    sendErrorReply(QString(bus::errorPrefix) + "InvalidValue",
                   key.isEmpty() ? QString("The key is empty.")
                                 : "\"" + json + "\" is no settings value: " + QString::fromStdString(error));
    return;
  }
  defaults_.setValue(key.toStdString(), std::move(*value));
}

void ScriptingService::unsetSetting(const QString& key) { defaults_.removeValue(key.toStdString()); }

} // namespace lb

#include "ScriptingService.moc"
