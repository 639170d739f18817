#pragma once

#include "ports/GlobalKeys.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>

#include <map>
#include <memory>

class QDBusMessage;

namespace lb {

// Global keys through the desktop portal's GlobalShortcuts, where the
// desktop (not the program) has the last word on the keys: the program asks
// for its keys as preferred triggers, and shows the triggers the desktop
// reports. Each change binds every shortcut anew in a fresh session, as
// portals take one binding per session.
class PortalGlobalKeys final : public QObject, public GlobalKeys {
  Q_OBJECT
public:
  // None when the session bus has no portal with GlobalShortcuts.
  static std::unique_ptr<PortalGlobalKeys> make(QDBusConnection bus);

  std::optional<std::string> method() const override;
  void grab(const std::string& id, const std::string& keySequence, const std::string& description,
            std::function<void()> pressed, Done done) override;
  void release(const std::string& id) override;
  // The desktop holds the keys and may not be asked to let go of them
  // without asking the user again: presses still come, and the binder
  // ignores them meanwhile.
  void setSuspended(bool) override {}

  // "Ctrl+Alt+H" as portals write triggers: "CTRL+ALT+h".
  static QString preferredTrigger(const std::string& keySequence);

private slots:
  void response(uint code, const QVariantMap& results, const QDBusMessage& message);
  void activated(const QDBusObjectPath& session, const QString& id, qulonglong timestamp, const QVariantMap& options);

private:
  struct Shortcut {
    std::string keySequence;
    std::string description;
    std::function<void()> pressed;
    Done done; // until the desktop answers
  };

  PortalGlobalKeys(QDBusConnection bus, uint version);
  void scheduleBinding();
  void createSession();
  void bindShortcuts();
  // Calls `method` with the request's answer awaited at its handle.
  void request(const QString& method, QVariantList arguments, QVariantMap options);
  void answerPending(const std::optional<QVariantMap>& bound);

  QDBusConnection bus_;
  uint version_;
  std::map<std::string, Shortcut> shortcuts_;
  QString session_;
  QString awaited_; // the request handle whose answer counts
  bool scheduled_ = false;
  int nextToken_ = 0;
};

} // namespace lb
