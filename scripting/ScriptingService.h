#pragma once

#include "core/AppDelegate.h"
#include "ports/DiagnosticReporter.h"
#include "scripting/BusNames.h"
#include "scripting/ScriptingDeviceTree.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusObjectPath>
#include <QObject>
#include <QVariantMap>

#include <atomic>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace lb {

// The program's scripting interface on the session bus, under the name
// "org.lanternbud.Lanternbud":
//
//   /org/lanternbud/Lanternbud              interface org.lanternbud.Lanternbud
//     Devices (ao): one path per device, in the tray's order
//     ShowPreferences(), Quit(), FindDevice(s) -> o (by ID, name or address)
//     AddDevice(s address) -> o, RemoveDevice(o)
//     BatteryHistory(o) -> s json: {"lastRead": seconds, "sides": {"left":
//     [[seconds, level], …]}}, seconds since 1970
//     GetSetting(s key) -> s json, SetSetting(s key, s json) -> s when,
//     UnsetSetting(s key) -> s when: "now", or "nextStart" for a tunable
//     that this run has read already
//     SaveDiagnosticReport(s path, b maskAddresses): answers once written
//   /org/lanternbud/Lanternbud/Device/<ID>  interface org.lanternbud.Lanternbud.Device
//     Name, ID, Address, BatteryLevel, BatteryLevelString, IconName,
//     IconData, DisconnectedIconData, ConnectedIconData, Connected (writable),
//     Status, ConnectionScript, DisconnectionScript
//     Connect() -> s, Disconnect() -> s, Toggle() -> s: what was done
//
// A value that is missing is given as the type's empty value: Address "",
// BatteryLevel -1, the icon data empty. Changes are announced with
// PropertiesChanged. The paths carry device IDs, so they stay valid when the
// list is re-sorted. Main thread only.
class ScriptingService final : public QObject, protected QDBusContext {
  Q_OBJECT

public:
  // Exports the objects; the service name is taken by whoever owns the
  // single-instance check.
  ScriptingService(QDBusConnection bus, AppDelegate& app, Services& services, DiagnosticReporter& reporter);
  ~ScriptingService() override;

  static QString devicePath(std::int64_t ID);
  QList<QDBusObjectPath> devices() const;

  // Compares what scripts see of the devices noted as changed with what
  // they saw, and announces the changes. Battery values come from what was
  // last read: reading afresh is for clients that ask.
  void refresh();

  // The application interface's methods (through its adaptor).
  void showPreferences();
  void quit();
  QDBusObjectPath findDevice(const QString& query);
  QDBusObjectPath addDevice(const QString& address);
  void removeDevice(const QDBusObjectPath& path);
  QString batteryHistory(const QDBusObjectPath& path);
  QString getSetting(const QString& key);
  QString setSetting(const QString& key, const QString& json);
  QString unsetSetting(const QString& key);
  void saveDiagnosticReport(const QString& path, bool maskAddresses);

private:
  void scheduleRefresh(const DeviceSetting* changed);
  void announce(const QString& path, const QString& interface, const QVariantMap& changed);
  void fail(const char* error, const QString& message);
  // Outside text as error messages quote it: the first 100 characters.
  static QString quoted(const QString& text);
  bool refusesLongKey(const QString& key);
  bool refusesWhileRunning(const QString& key);
  bool reportedNotSaved(const QString& done);
  QString whenItTakesEffect(const QString& key) const;

  QDBusConnection bus_;
  AppDelegate& app_;
  Services& services_;
  DiagnosticReporter& reporter_;
  // The reports being written, each stopped when its caller leaves or the
  // service goes.
  std::vector<std::weak_ptr<std::atomic<bool>>> reports_;
  ScriptingDeviceTree::Objects objects_;
  ScriptingDeviceTree tree_{objects_};
  QList<QDBusObjectPath> shownList_;
  bool refreshPending_ = false;
  std::set<std::int64_t> changed_; // device IDs

  std::unique_ptr<NotificationRegistration> listening_;
};

} // namespace lb
