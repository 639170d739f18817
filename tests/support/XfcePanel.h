#pragma once

#include "tests/support/PrivateBus.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/XServer.h"

#include <QProcess>
#include <QStringList>

#include <memory>
#include <string>

namespace lb::test {

// Xfce's panel from Debian, one panel with its system tray plugin (a
// StatusNotifierItem host), on the test's display and session bus. Its
// settings daemon (xfconfd) runs here too, from a preseeded settings file,
// so that no first-run dialog asks how to set the panel up. Everything it
// starts, it stops.
class XfcePanel {
public:
  XfcePanel(const XServer& display, const PrivateBus& session);
  ~XfcePanel();

  // Empty when the panel runs; otherwise why the tests that need it fail.
  const std::string& skipReason() const { return skipReason_; }
  // Stops the panel and starts it again, as a user's restart does; whether
  // its watcher is back.
  bool restart();
  // A list setting of the tray plugin: "known-items" (the Ids in the panel's
  // list of items), "hidden-items".
  QStringList trayList(const QString& name);
  bool setTrayList(const QString& name, const QStringList& values);

private:
  bool startPanel();
  void stopPanel();
  std::optional<QByteArray> xfconf(const QStringList& arguments);

  std::string skipReason_;
  TemporaryDirectory home_;
  QProcessEnvironment environment_;
  QProcess settings_;
  std::unique_ptr<QProcess> panel_;
};

} // namespace lb::test
