#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QVariantMap>

#include <chrono>
#include <optional>
#include <string>

namespace lb {

// The running Lanternbud as lanternbud-ctl reaches it: calls on its
// scripting interface on the session bus, and waits for a device's
// announced changes.
class ProgramClient final : public QObject {
  Q_OBJECT

public:
  // Whether reaching the program may have the session bus start it (through
  // its service file), or only finds one that runs.
  enum class Start { onDemand, never };
  explicit ProgramClient(Start start);

  bool running();
  // Makes sure the program answers, having the bus start it if allowed. Why
  // it does not, if so.
  std::optional<std::string> reach();

  // A call answers within `limit`, or fails.
  QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                    const QVariantList& arguments = {}, std::chrono::milliseconds limit = std::chrono::seconds(10));
  QDBusMessage application(const QString& method, const QVariantList& arguments = {},
                           std::chrono::milliseconds limit = std::chrono::seconds(10));
  QDBusMessage device(const QString& path, const QString& method);

  QVariantMap properties(const QString& path);
  QVariant property(const QString& path, const char* name) { return properties(path).value(name); }
  QList<QDBusObjectPath> devices();

  // Listens to the device's PropertiesChanged from now on, so that a change
  // that a request causes is not missed.
  void watch(const QString& path);
  // Until the watched device's Connected is `connected`, or `limit` passes.
  bool waitUntilConnected(bool connected, std::chrono::seconds limit);

private slots:
  void changed(const QDBusMessage& message);

private:
  QDBusConnection bus_;
  Start start_;
  QString watched_;
  std::optional<bool> connected_;
};

} // namespace lb
