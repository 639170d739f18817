#pragma once

#include "core/DeviceSetting.h"

#include <QVariantMap>

#include <memory>

namespace lb {

// One device as the scripting interface shows it. Holds its device setting
// weakly: a device removed from the registry answers nothing more.
class ScriptingDeviceObject {
public:
  // The device interface's properties with their D-Bus signatures, in the
  // order introspection lists them; only Connected is writable.
  struct Property {
    const char* name;
    const char* signature;
  };
  static const std::vector<Property>& properties();

  explicit ScriptingDeviceObject(std::weak_ptr<DeviceSetting> setting) : setting_(std::move(setting)) {}

  // Every property by its D-Bus name. A missing value is the type's empty
  // value: Address "", BatteryLevel -1, icon data empty.
  QVariantMap values() const;
  void setConnected(bool connected);

  // What was last announced, kept by the service to find changes in.
  QVariantMap shown;

private:
  std::weak_ptr<DeviceSetting> setting_;
};

} // namespace lb
