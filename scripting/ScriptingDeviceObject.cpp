#include "scripting/ScriptingDeviceObject.h"

namespace lb {

namespace {
QString text(const std::string& value) { return QString::fromStdString(value); }
} // namespace

const std::vector<ScriptingDeviceObject::Property>& ScriptingDeviceObject::properties() {
  static const std::vector<Property> all{
      {"Name", "s"},      {"ID", "x"},         {"Address", "s"},       {"BatteryLevel", "i"},
      {"BatteryLevelString", "s"}, {"IconName", "s"}, {"IconData", "ay"}, {"DisconnectedIconData", "ay"},
      {"ConnectedIconData", "ay"}, {"Connected", "b"}, {"Status", "s"},   {"ConnectionScript", "s"},
      {"DisconnectionScript", "s"}};
  return all;
}

QVariantMap ScriptingDeviceObject::values() const {
  auto setting = setting_.lock();
  if (!setting) return {};
  // Pictures come with the tray, which renders them; until then there are
  // none, which the interface gives as empty data.
  return {{"Name", text(setting->scriptingName())},
          {"ID", qlonglong(setting->scriptingID())},
          {"Address", text(setting->scriptingAddress().value_or(""))},
          {"BatteryLevel", setting->scriptingBatteryLevel().value_or(-1)},
          {"BatteryLevelString", text(setting->batteryLevelString())},
          {"IconName", text(setting->scriptingIconName())},
          {"IconData", QByteArray()},
          {"DisconnectedIconData", QByteArray()},
          {"ConnectedIconData", QByteArray()},
          {"Connected", setting->scriptingIsConnected()},
          {"Status", text(setting->scriptingStatus())},
          {"ConnectionScript", text(setting->shellScriptAfterConnected())},
          {"DisconnectionScript", text(setting->shellScriptAfterDisconnected())}};
}

void ScriptingDeviceObject::setConnected(bool connected) {
  if (auto setting = setting_.lock()) setting->setScriptingIsConnected(connected);
}

} // namespace lb
