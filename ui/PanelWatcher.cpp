#include "ui/PanelWatcher.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace lb {

namespace {

const QString portal = "org.freedesktop.portal.Desktop";
const QString xfconf = "org.xfce.Xfconf";
constexpr int answerWithin = 1000; // ms: a desktop service answers at once or not at all

bool paletteIsDark() { return QGuiApplication::palette().color(QPalette::Window).lightness() < 128; }

bool desktopIs(const char* name) {
  return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':').contains(name, Qt::CaseInsensitive);
}

// The portal's answer is a variant, in older portals a variant in a variant.
QVariant unwrapped(QVariant value) {
  while (value.canConvert<QDBusVariant>() && value.metaType() == QMetaType::fromType<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  return value;
}

std::optional<PanelSignals::Scheme> scheme(const QVariant& answer) {
  bool isNumber = false;
  const auto value = unwrapped(answer).toUInt(&isNumber);
  if (!isNumber) return std::nullopt;
  if (value == 1) return PanelSignals::Scheme::preferDark;
  if (value == 2) return PanelSignals::Scheme::preferLight;
  return PanelSignals::Scheme::noPreference;
}

} // namespace

PanelWatcher::PanelWatcher(const QDBusConnection& session)
    : session_(session), shell_("org.gnome.Shell", session, QDBusServiceWatcher::WatchForOwnerChange) {
  connect(&shell_, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { changed(); });
  session_.connect(portal, "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "SettingChanged", this,
                   SLOT(portalSettingChanged(QString, QString, QDBusVariant)));
  session_.connect(xfconf, "/org/xfce/Xfconf", "org.xfce.Xfconf", "PropertyChanged", this,
                   SLOT(xfconfPropertyChanged(QString, QString, QDBusVariant)));
  QGuiApplication::instance()->installEventFilter(this);
}

bool PanelWatcher::running(const QString& service) const {
  return session_.isConnected() && session_.interface()->isServiceRegistered(service);
}

PanelSignals PanelWatcher::read() const {
  PanelSignals panel;
  panel.gnomeShell = running("org.gnome.Shell");
  // The panel's own name: xfconf alone may serve another desktop.
  if (running("org.xfce.Panel")) {
    auto get = QDBusMessage::createMethodCall(xfconf, "/org/xfce/Xfconf", "org.xfce.Xfconf", "GetProperty");
    get << "xfce4-panel"
        << "/panels/dark-mode";
    const auto answer = session_.call(get, QDBus::Block, answerWithin);
    // An unset "dark-mode" is false: the panel follows the light theme.
    panel.xfcePanelDark = answer.type() == QDBusMessage::ReplyMessage &&
                          unwrapped(answer.arguments().value(0)).toBool();
  }
  if (desktopIs("KDE")) panel.plasmaDark = paletteIsDark();
  if (running(portal)) {
    auto get = QDBusMessage::createMethodCall(portal, "/org/freedesktop/portal/desktop",
                                              "org.freedesktop.portal.Settings", "Read");
    get << "org.freedesktop.appearance"
        << "color-scheme";
    const auto answer = session_.call(get, QDBus::Block, answerWithin);
    if (answer.type() == QDBusMessage::ReplyMessage) panel.portalScheme = scheme(answer.arguments().value(0));
  }
  // Qt's palette says something only where a colour theme set it.
  if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORMTHEME")) panel.paletteDark = paletteIsDark();
  return panel;
}

void PanelWatcher::portalSettingChanged(const QString& group, const QString& key, const QDBusVariant&) {
  if (group == "org.freedesktop.appearance" && key == "color-scheme") changed();
}

void PanelWatcher::xfconfPropertyChanged(const QString& channel, const QString& property, const QDBusVariant&) {
  if (channel == "xfce4-panel" && property == "/panels/dark-mode") changed();
}

bool PanelWatcher::eventFilter(QObject* watched, QEvent* event) {
  if (watched == QGuiApplication::instance() && event->type() == QEvent::ApplicationPaletteChange) changed();
  return false;
}

void PanelWatcher::changed() {
  if (changed_) changed_();
}

} // namespace lb
