#include "scripting/ScriptingService.h"

#include "core/SettingKeys.h"
#include "foundation/BluetoothAddress.h"
#include "foundation/PXRLog.h"
#include "foundation/SettingsJson.h"
#include "scripting/ScriptingDeviceObject.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QPointer>
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
  QDBusObjectPath AddDevice(const QString& address) { return service_.addDevice(address); }
  void RemoveDevice(const QDBusObjectPath& path) { service_.removeDevice(path); }
  QString BatteryHistory(const QDBusObjectPath& path) { return service_.batteryHistory(path); }
  QString GetSetting(const QString& key) { return service_.getSetting(key); }
  QString SetSetting(const QString& key, const QString& json) { return service_.setSetting(key, json); }
  QString UnsetSetting(const QString& key) { return service_.unsetSetting(key); }
  void SaveDiagnosticReport(const QString& path, bool maskAddresses) {
    service_.saveDiagnosticReport(path, maskAddresses);
  }

private:
  ScriptingService& service_;
};

} // namespace

ScriptingService::ScriptingService(QDBusConnection bus, AppDelegate& app, Services& services,
                                   DiagnosticReporter& reporter)
    : bus_(std::move(bus)), app_(app), services_(services), reporter_(reporter) {
  new ApplicationAdaptor(this);
  bus_.registerObject(bus::applicationPath, this, QDBusConnection::ExportAdaptors);
  bus_.registerVirtualObject(bus::deviceRoot, &tree_, QDBusConnection::SubPath);
  if (auto* registry = app_.deviceSettingManager())
    listening_ = registry->addChangeListener([this](const DeviceSetting* changed) { scheduleRefresh(changed); });
  refresh();
}

ScriptingService::~ScriptingService() {
  for (const auto& report : reports_) {
    if (auto cancelled = report.lock()) cancelled->store(true);
  }
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
void ScriptingService::scheduleRefresh(const DeviceSetting* changed) {
  if (changed) changed_.insert(changed->deviceID());
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
      object->shown = object->values(BatteryReading::lastKnown);
      continue;
    }
    if (!changed_.contains(ID)) continue;
    const auto now = object->values(BatteryReading::lastKnown);
    QVariantMap changed;
    for (auto value = now.begin(); value != now.end(); ++value) {
      if (object->shown.value(value.key()) != value.value()) changed.insert(value.key(), value.value());
    }
    object->shown = now;
    if (!changed.isEmpty()) announce(devicePath(ID), bus::deviceInterface, changed);
  }
  changed_.clear();
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
    auto number = query.toLongLong(&isNumber);
    isNumber = isNumber && QString::number(number) == query; // "+1" and "01" name no device
    for (const auto& setting : registry->deviceSettingList()) {
      const bool matches = (isNumber && setting->deviceID() == number) ||
                           QString::fromStdString(setting->scriptingName()).compare(query, Qt::CaseInsensitive) == 0 ||
                           sameBluetoothAddress(setting->scriptingAddress().value_or(""), query.toStdString());
      if (matches) return QDBusObjectPath(devicePath(setting->deviceID()));
    }
  }
  // A query is echoed only so far: a client may send megabytes.
  fail("NoSuchDevice", "No device has the ID, name or address \"" + quoted(query) + "\".");
  return {};
}

QString ScriptingService::quoted(const QString& text) { return text.size() <= 100 ? text : text.left(100) + "…"; }

void ScriptingService::fail(const char* error, const QString& message) {
  sendErrorReply(QString(bus::errorPrefix) + error, message);
}

QDBusObjectPath ScriptingService::addDevice(const QString& text) {
  auto* registry = app_.deviceSettingManager();
  if (!registry) {
    fail("Starting", "Lanternbud is still starting; try again in a moment.");
    return {};
  }
  const auto address = text.toStdString();
  const auto added = registry->add(address);
  if (added) return QDBusObjectPath(devicePath(added.value().deviceID()));
  // As BlueZ writes it, once it reads as an address.
  const auto parsed = BluetoothAddress::parse(address);
  const auto written = parsed ? QString::fromStdString(parsed->toString()) : text;
  switch (added.failure()) {
  case DeviceSettingManager::AddError::invalid:
    fail("InvalidAddress",
         "\"" + quoted(text) +
             "\" is not a Bluetooth address: six pairs of hexadecimal digits, as in 00:1B:66:AA:BB:CC.");
    break;
  case DeviceSettingManager::AddError::unknown:
    fail("UnknownDevice",
         "The system knows no Bluetooth device at " + written + "; pair it first (bluetoothctl pair " + written + ").");
    break;
  case DeviceSettingManager::AddError::alreadyAdded:
    fail("AlreadyAdded",
         written + " is already added, as device " + QString::number(registry->find(address)->deviceID()) + ".");
    break;
  case DeviceSettingManager::AddError::notSaved: {
    const auto& setting = *registry->find(address);
    reportedNotSaved(QString::fromStdString(setting.deviceName().value_or(written.toStdString())) +
                     " added as device " + QString::number(setting.deviceID()));
    break;
  }
  }
  return {};
}

void ScriptingService::removeDevice(const QDBusObjectPath& path) {
  if (auto* registry = app_.deviceSettingManager()) {
    for (const auto& setting : registry->deviceSettingList()) {
      if (devicePath(setting->deviceID()) != path.path()) continue;
      const auto name = QString::fromStdString(setting->deviceName().value_or("The device"));
      if (!registry->remove(setting->deviceID())) reportedNotSaved(name + " removed");
      return;
    }
  }
  fail("NoSuchDevice", "No device has the path " + quoted(path.path()) + ".");
}

QString ScriptingService::batteryHistory(const QDBusObjectPath& path) {
  if (auto* registry = app_.deviceSettingManager()) {
    for (const auto& setting : registry->deviceSettingList()) {
      if (devicePath(setting->deviceID()) != path.path()) continue;
      if (const auto* history = setting->batteryHistory()) return QString::fromStdString(history->toJson()).trimmed();
      fail("NoAddress", QString::fromStdString(setting->deviceName().value_or("The device")) +
                            " has no Bluetooth address, so no battery history is kept.");
      return {};
    }
  }
  fail("NoSuchDevice", "No device has the path " + quoted(path.path()) + ".");
  return {};
}

QString ScriptingService::getSetting(const QString& key) {
  if (refusesLongKey(key)) return {};
  auto value = services_.defaults.object(key.toStdString());
  if (!value) {
    fail("NotSet", "\"" + key + "\" is not set; its default applies.");
    return {};
  }
  return QString::fromStdString(SettingsJson::write(*value)).trimmed();
}

QString ScriptingService::setSetting(const QString& key, const QString& json) {
  if (auto unknown = SettingKeys::whyUnknown(key.toStdString())) {
    fail("UnknownKey", QString::fromStdString(*unknown));
    return {};
  }
  if (refusesWhileRunning(key)) return {};
  std::string error;
  auto value = SettingsJson::parse(json.toStdString(), error);
  if (!value) {
    fail("InvalidValue", "\"" + quoted(json) + "\" is no settings value: " + QString::fromStdString(error));
    return {};
  }
  if (auto problem = SettingKeys::problem(key.toStdString(), *value)) {
    fail("InvalidValue", QString::fromStdString(*problem));
    return {};
  }
  services_.defaults.setValue(key.toStdString(), std::move(*value));
  if (reportedNotSaved(quoted(key) + " set")) return {};
  return whenItTakesEffect(key);
}

QString ScriptingService::unsetSetting(const QString& key) {
  if (refusesLongKey(key) || refusesWhileRunning(key)) return {};
  services_.defaults.removeValue(key.toStdString());
  if (reportedNotSaved(quoted(key) + " unset")) return {};
  return whenItTakesEffect(key);
}

// The change stays in the running program, and the next save that works
// writes it too; the caller must know meanwhile.
bool ScriptingService::reportedNotSaved(const QString& done) {
  auto problem = services_.defaults.saveProblem();
  if (!problem) return false;
  fail("NotSaved", done + ", but not saved: " + QString::fromStdString(*problem) +
                       ". It applies until Lanternbud quits; once the settings can be written, the next change "
                       "saves it.");
  return true;
}

// Written on a worker: the bus and the tray go on meanwhile. The answer
// comes when the file is whole. A caller that leaves (Ctrl-C, killed) takes
// its report with it: it stops and leaves nothing.
void ScriptingService::saveDiagnosticReport(const QString& path, bool maskAddresses) {
  if (!path.startsWith('/')) {
    fail("InvalidPath", "\"" + quoted(path) + "\" is not an absolute path; the report needs one.");
    return;
  }
  setDelayedReply(true);
  const auto caller = message().service();
  auto cancelled = std::make_shared<std::atomic<bool>>(false);
  std::erase_if(reports_, [](const auto& report) { return report.expired(); });
  reports_.push_back(cancelled);
  QPointer watcher = new QDBusServiceWatcher(caller, bus_, QDBusServiceWatcher::WatchForUnregistration, this);
  const auto callerLeft = [caller, cancelled] {
    if (cancelled->exchange(true)) return;
    PXR_LOG_ERROR("The caller of the diagnostic report (" + caller.toStdString() + ") left; stopping the report.");
  };
  connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, callerLeft);
  // It may have left before the watch began.
  if (!bus_.interface()->isServiceRegistered(caller)) callerLeft();
  services_.loop.runBlocking(
      [&reporter = reporter_, destination = path.toStdString(), maskAddresses, cancelled] {
        return reporter.saveReport(
            destination, maskAddresses, [](int, int, const std::string&) {}, *cancelled);
      },
      [bus = bus_, request = message(), watcher, path, cancelled](const Result<void>& result) mutable {
        if (watcher) watcher->deleteLater();
        if (!result && *cancelled) {
          PXR_LOG_ERROR("The diagnostic report to " + path.toStdString() + " was cancelled; nothing was saved.");
        }
        bus.send(result ? request.createReply()
                        : request.createErrorReply(QString(bus::errorPrefix) + "ReportFailed",
                                                   QString::fromStdString(result.failure().reason)));
      });
}

QString ScriptingService::whenItTakesEffect(const QString& key) const {
  return services_.tunables.isFixedForThisRun(key.toStdString()) ? "nextStart" : "now";
}

// The running program owns the device list and writes it at quit.
bool ScriptingService::refusesLongKey(const QString& key) {
  auto refusal = SettingKeys::tooLong(key.toStdString());
  if (refusal) fail("UnknownKey", QString::fromStdString(*refusal));
  return refusal.has_value();
}

bool ScriptingService::refusesWhileRunning(const QString& key) {
  if (key != settingKey::devices) return false;
  fail("ReadOnly", "The device list changes only by adding and removing devices while Lanternbud runs: "
                   "use lanternbud-ctl add <address> and lanternbud-ctl remove <device>.");
  return true;
}

} // namespace lb

#include "ScriptingService.moc"
