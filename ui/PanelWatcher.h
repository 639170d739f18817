#pragma once

#include "ports/StatusBar.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>

#include <functional>

namespace lb {

// Asks the desktop what it says of its panel's colour: whether GNOME Shell
// runs, Xfce's panel setting "dark-mode", Plasma's colours and a colour
// theme's palette as Qt has them, and the desktop portal's colour scheme;
// and tells when any of them changes. Only services already running are
// asked: none is started for the question.
class PanelWatcher final : public QObject {
  Q_OBJECT

public:
  explicit PanelWatcher(const QDBusConnection& session);

  PanelSignals read() const;
  void onChange(std::function<void()> changed) { changed_ = std::move(changed); }

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
  void portalSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
  void xfconfPropertyChanged(const QString& channel, const QString& property, const QDBusVariant& value);

private:
  void changed();
  bool running(const QString& service) const;

  QDBusConnection session_;
  QDBusServiceWatcher shell_;
  std::function<void()> changed_;
};

} // namespace lb
