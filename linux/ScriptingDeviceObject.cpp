#include "linux/ScriptingDeviceObject.h"

#include "linux/ScriptingService.h"

#include <QDBusAbstractAdaptor>

namespace lb {

namespace {

QString text(const std::string& value) { return QString::fromStdString(value); }

// The device interface: Qt answers Get, GetAll, Set and Introspect from
// these properties.
class DeviceAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.lanternbud.Lanternbud.Device")
  Q_PROPERTY(QString Name READ name)
  Q_PROPERTY(qlonglong ID READ ID)
  Q_PROPERTY(QString Address READ address)
  Q_PROPERTY(int BatteryLevel READ batteryLevel)
  Q_PROPERTY(QString BatteryLevelString READ batteryLevelString)
  Q_PROPERTY(QString IconName READ iconName)
  Q_PROPERTY(QByteArray IconData READ iconData)
  Q_PROPERTY(QByteArray DisconnectedIconData READ disconnectedIconData)
  Q_PROPERTY(QByteArray ConnectedIconData READ connectedIconData)
  Q_PROPERTY(bool Connected READ connected WRITE setConnected)
  Q_PROPERTY(QString Status READ status)
  Q_PROPERTY(QString ConnectionScript READ connectionScript)
  Q_PROPERTY(QString DisconnectionScript READ disconnectionScript)

public:
  explicit DeviceAdaptor(ScriptingDeviceObject* device) : QDBusAbstractAdaptor(device), device_(*device) {}

  QString name() const { return device_.name(); }
  qlonglong ID() const { return device_.ID(); }
  QString address() const { return device_.address(); }
  int batteryLevel() const { return device_.batteryLevel(); }
  QString batteryLevelString() const { return device_.batteryLevelString(); }
  QString iconName() const { return device_.iconName(); }
  QByteArray iconData() const { return device_.iconData(); }
  QByteArray disconnectedIconData() const { return device_.disconnectedIconData(); }
  QByteArray connectedIconData() const { return device_.connectedIconData(); }
  bool connected() const { return device_.connected(); }
  void setConnected(bool connected) { device_.setConnected(connected); }
  QString status() const { return device_.status(); }
  QString connectionScript() const { return device_.connectionScript(); }
  QString disconnectionScript() const { return device_.disconnectionScript(); }

private:
  ScriptingDeviceObject& device_;
};

} // namespace

ScriptingDeviceObject::ScriptingDeviceObject(std::weak_ptr<DeviceSetting> setting) : setting_(std::move(setting)) {
  new DeviceAdaptor(this);
}

QVariantMap ScriptingDeviceObject::snapshot() const {
  return {{"Name", name()},
          {"ID", ID()},
          {"Address", address()},
          {"BatteryLevel", batteryLevel()},
          {"BatteryLevelString", batteryLevelString()},
          {"IconName", iconName()},
          {"Connected", connected()},
          {"Status", status()},
          {"ConnectionScript", connectionScript()},
          {"DisconnectionScript", disconnectionScript()}};
}

QString ScriptingDeviceObject::name() const {
  auto setting = setting_.lock();
  return setting ? text(setting->scriptingName()) : QString();
}

qlonglong ScriptingDeviceObject::ID() const {
  auto setting = setting_.lock();
  return setting ? setting->scriptingID() : 0;
}

QString ScriptingDeviceObject::address() const {
  auto setting = setting_.lock();
  return setting ? text(setting->scriptingAddress().value_or("")) : QString();
}

int ScriptingDeviceObject::batteryLevel() const {
  auto setting = setting_.lock();
  return setting ? setting->scriptingBatteryLevel().value_or(-1) : -1;
}

QString ScriptingDeviceObject::batteryLevelString() const {
  auto setting = setting_.lock();
  return setting ? text(setting->batteryLevelString()) : QString();
}

QString ScriptingDeviceObject::iconName() const {
  auto setting = setting_.lock();
  return setting ? text(setting->scriptingIconName()) : QString();
}

// Pictures come with the tray, which renders them; until then there are
// none, which the interface gives as empty data.
QByteArray ScriptingDeviceObject::iconData() const { return {}; }
QByteArray ScriptingDeviceObject::disconnectedIconData() const { return {}; }
QByteArray ScriptingDeviceObject::connectedIconData() const { return {}; }

bool ScriptingDeviceObject::connected() const {
  auto setting = setting_.lock();
  return setting && setting->scriptingIsConnected();
}

void ScriptingDeviceObject::setConnected(bool connected) {
  if (auto setting = setting_.lock()) setting->setScriptingIsConnected(connected);
}

QString ScriptingDeviceObject::status() const {
  auto setting = setting_.lock();
  return setting ? text(setting->scriptingStatus()) : QString();
}

QString ScriptingDeviceObject::connectionScript() const {
  auto setting = setting_.lock();
  return text(setting ? setting->shellScriptAfterConnected() : DeviceSetting::defaultScript);
}

QString ScriptingDeviceObject::disconnectionScript() const {
  auto setting = setting_.lock();
  return text(setting ? setting->shellScriptAfterDisconnected() : DeviceSetting::defaultScript);
}

} // namespace lb

#include "ScriptingDeviceObject.moc"
