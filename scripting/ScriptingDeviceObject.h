#pragma once

#include "core/DeviceSetting.h"

#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

namespace lb {

// One property of the device interface: its D-Bus name and type, how it is
// read, and, for a writable one, how it is set. The table of these drives
// the values, the introspection and the checks of Set.
struct ScriptingProperty {
  const char* name;
  const char* signature;
  QVariant (*get)(DeviceSetting& setting, BatteryReading reading);
  void (*set)(DeviceSetting& setting, const QVariant& value) = nullptr;
};

// One method of the device interface: a request, answered with what it did
// ("connecting", "disconnecting", "settingOutput", "unchanged", "busy",
// "connectionOnly", "noDevice").
struct ScriptingMethod {
  const char* name;
  ConnectionOutcome (*call)(DeviceSetting& setting);
};

// One device as the scripting interface shows it. Holds its device setting
// weakly: a device removed from the registry answers nothing more.
class ScriptingDeviceObject {
public:
  // In the order introspection lists them.
  static const std::vector<ScriptingProperty>& properties();
  static const ScriptingProperty* property(const QString& name);
  static const std::vector<ScriptingMethod>& methods();
  static const ScriptingMethod* method(const QString& name);
  static QString describe(ConnectionOutcome outcome);

  explicit ScriptingDeviceObject(std::weak_ptr<DeviceSetting> setting) : setting_(std::move(setting)) {}

  // Every property by its D-Bus name. A missing value is the type's empty
  // value: Address "", BatteryLevel -1, icon data empty. Battery values
  // are read as `reading` says.
  QVariantMap values(BatteryReading reading) const;
  void set(const ScriptingProperty& property, const QVariant& value);
  // None when the device is gone.
  std::optional<ConnectionOutcome> call(const ScriptingMethod& method);

  // What was last announced, kept by the service to find changes in.
  QVariantMap shown;

private:
  std::weak_ptr<DeviceSetting> setting_;
};

} // namespace lb
