#include "scripting/ScriptingDeviceObject.h"

namespace lb {

namespace {
QVariant text(const std::string& value) { return QString::fromStdString(value); }
QVariant bytes(const std::vector<unsigned char>& data) {
  return QByteArray(reinterpret_cast<const char*>(data.data()), qsizetype(data.size()));
}
} // namespace

const std::vector<ScriptingProperty>& ScriptingDeviceObject::properties() {
  static const std::vector<ScriptingProperty> all{
      {"Name", "s", [](DeviceSetting& s, BatteryReading) { return text(s.scriptingName()); }},
      {"ID", "x", [](DeviceSetting& s, BatteryReading) { return QVariant(qlonglong(s.scriptingID())); }},
      {"Address", "s", [](DeviceSetting& s, BatteryReading) { return text(s.scriptingAddress().value_or("")); }},
      {"BatteryLevel", "i",
       [](DeviceSetting& s, BatteryReading reading) {
         return QVariant(s.scriptingBatteryLevel(reading).value_or(-1));
       }},
      {"BatteryLevelString", "s",
       [](DeviceSetting& s, BatteryReading reading) { return text(s.batteryLevelString(reading)); }},
      {"IconName", "s", [](DeviceSetting& s, BatteryReading) { return text(s.scriptingIconName()); }},
      {"IconData", "ay", [](DeviceSetting& s, BatteryReading) { return bytes(s.scriptingIconData()); }},
      {"DisconnectedIconData", "ay",
       [](DeviceSetting& s, BatteryReading) { return bytes(s.scriptingDisconnectedIconData()); }},
      {"ConnectedIconData", "ay",
       [](DeviceSetting& s, BatteryReading) { return bytes(s.scriptingConnectedIconData()); }},
      {"Connected", "b", [](DeviceSetting& s, BatteryReading) { return QVariant(s.scriptingIsConnected()); },
       [](DeviceSetting& s, const QVariant& value) { s.setScriptingIsConnected(value.toBool()); }},
      {"Status", "s", [](DeviceSetting& s, BatteryReading) { return text(s.scriptingStatus()); }},
      {"SoundOutput", "b", [](DeviceSetting& s, BatteryReading) { return QVariant(s.isAudioOutput() == true); }},
      {"ConnectionScript", "s", [](DeviceSetting& s, BatteryReading) { return text(s.shellScriptAfterConnected()); }},
      {"DisconnectionScript", "s",
       [](DeviceSetting& s, BatteryReading) { return text(s.shellScriptAfterDisconnected()); }},
  };
  return all;
}

const ScriptingProperty* ScriptingDeviceObject::property(const QString& name) {
  for (const auto& each : properties()) {
    if (name == each.name) return &each;
  }
  return nullptr;
}

const std::vector<ScriptingMethod>& ScriptingDeviceObject::methods() {
  static const std::vector<ScriptingMethod> all{
      {"Connect", [](DeviceSetting& s) { return s.connect(); }},
      {"Disconnect", [](DeviceSetting& s) { return s.disconnect(); }},
      {"Toggle", [](DeviceSetting& s) { return s.toggleConnection(); }},
  };
  return all;
}

const ScriptingMethod* ScriptingDeviceObject::method(const QString& name) {
  for (const auto& each : methods()) {
    if (name == each.name) return &each;
  }
  return nullptr;
}

QString ScriptingDeviceObject::describe(ConnectionOutcome outcome) {
  switch (outcome) {
  case ConnectionOutcome::connecting: return "connecting";
  case ConnectionOutcome::disconnecting: return "disconnecting";
  case ConnectionOutcome::settingOutput: return "settingOutput";
  case ConnectionOutcome::showingMenu: return "showingMenu";
  case ConnectionOutcome::unchanged: return "unchanged";
  case ConnectionOutcome::busy: return "busy";
  case ConnectionOutcome::connectionOnly: return "connectionOnly";
  case ConnectionOutcome::noDevice: return "noDevice";
  }
  return "unknown";
}

std::optional<ConnectionOutcome> ScriptingDeviceObject::call(const ScriptingMethod& method) {
  auto setting = setting_.lock();
  if (!setting) return std::nullopt;
  return method.call(*setting);
}

QVariantMap ScriptingDeviceObject::values(BatteryReading reading) const {
  auto setting = setting_.lock();
  if (!setting) return {};
  QVariantMap values;
  for (const auto& property : properties()) values.insert(property.name, property.get(*setting, reading));
  return values;
}

void ScriptingDeviceObject::set(const ScriptingProperty& property, const QVariant& value) {
  auto setting = setting_.lock();
  if (setting && property.set) property.set(*setting, value);
}

} // namespace lb
