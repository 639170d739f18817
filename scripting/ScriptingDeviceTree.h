#pragma once

#include "scripting/BusNames.h"
#include "scripting/ScriptingDeviceObject.h"

#include <QDBusVirtualObject>

#include <functional>
#include <map>
#include <memory>

namespace lb {

// The device objects under /org/lanternbud/Lanternbud/Device/<ID>: their
// properties (Get, GetAll, Set) and introspection, answered here so that a
// wrong path, name or type gets an error that says what was wrong.
class ScriptingDeviceTree final : public QDBusVirtualObject {
public:
  using Objects = std::map<std::int64_t, std::unique_ptr<ScriptingDeviceObject>>;

  explicit ScriptingDeviceTree(const Objects& objects) : objects_(objects) {}

  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
  QDBusMessage answer(const QDBusMessage& message, ScriptingDeviceObject& device) const;
  // The device object at a path, or null.
  ScriptingDeviceObject* device(const QString& path) const;

  const Objects& objects_;
};

} // namespace lb
