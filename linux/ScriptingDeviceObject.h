#pragma once

#include "core/DeviceSetting.h"

#include <QObject>
#include <QVariantMap>

#include <memory>

namespace lb {

// One device as the scripting interface shows it. Holds its device setting
// weakly: a device removed from the registry answers nothing more.
class ScriptingDeviceObject final : public QObject {
  Q_OBJECT

public:
  explicit ScriptingDeviceObject(std::weak_ptr<DeviceSetting> setting);

  // Every property but the icon pictures, by its D-Bus name: what a change
  // is looked for in.
  QVariantMap snapshot() const;
  // The snapshot last announced, kept by the service.
  QVariantMap shown;

  QString name() const;
  qlonglong ID() const;
  QString address() const;
  int batteryLevel() const;
  QString batteryLevelString() const;
  QString iconName() const;
  QByteArray iconData() const;
  QByteArray disconnectedIconData() const;
  QByteArray connectedIconData() const;
  bool connected() const;
  void setConnected(bool connected);
  QString status() const;
  QString connectionScript() const;
  QString disconnectionScript() const;

private:
  std::weak_ptr<DeviceSetting> setting_;
};

} // namespace lb
