#include "ui/StatusNotifierItem.h"

#include "foundation/PXRLog.h"
#include "ui/DBusMenuExporter.h"
#include "ui/StatusNotifierItemAdaptor.h"
#include "ui/StatusNotifierRegistrar.h"
#include "ui/TrayMetrics.h"

#include <QCoreApplication>
#include <QGuiApplication>

namespace lb {

namespace {

const QString itemPath = "/StatusNotifierItem";
const QString menuPath = "/MenuBar";

// The sizes hosts draw, at the screen's pixel ratio.
std::vector<int> pictureHeights() {
  std::vector<int> heights;
  for (int points : trayMetrics::hostPoints) heights.push_back(int(points * qGuiApp->devicePixelRatio() + 0.5));
  return heights;
}

} // namespace

StatusNotifierItem::StatusNotifierItem(TrayStatusBar& bar, StatusNotifierRegistrar& registrar, const QString& identity,
                                       int serial)
    : bar_(bar), registrar_(registrar), connectionName_(QString("lanternbud-tray-item-%1").arg(serial)),
      serviceName_(QString("org.kde.StatusNotifierItem-%1-%2").arg(QCoreApplication::applicationPid()).arg(serial)),
      adaptor_(new StatusNotifierItemAdaptor(&itemObject_, identity, QDBusObjectPath(menuPath))),
      exporter_(new DBusMenuExporter(&menuObject_)),
      picture_(bar, pictureHeights(), [this](const QIcon& icon) { setIcon(icon); }) {
  static const bool registered = (registerStatusNotifierTypes(), true);
  (void)registered;
  adaptor_->onClick = [this](StatusItemClick::Button button) {
    if (onClick_) onClick_({button, false});
  };
  auto connection = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName_);
  connection.registerObject(itemPath, &itemObject_, QDBusConnection::ExportAdaptors);
  connection.registerObject(menuPath, &menuObject_, QDBusConnection::ExportAdaptors);
  connection.registerService(serviceName_);
  registrar_.add(this);
}

StatusNotifierItem::~StatusNotifierItem() {
  registrar_.remove(this);
  bar_.forget(this);
  // The host sees the name leave and takes the item away.
  QDBusConnection::disconnectFromBus(connectionName_);
}

void StatusNotifierItem::whenHostReads(std::function<void()> read) { adaptor_->onRead = std::move(read); }

void StatusNotifierItem::setAccessibilityLabel(const std::optional<std::string>& label) {
  const auto name = QString::fromStdString(label.value_or(""));
  adaptor_->setTitle(name);
  menu_.setAccessibleName(name);
}

void StatusNotifierItem::setIcon(const QIcon& icon) {
  if (picture_.busy()) {
    auto [frame, isNew] = frames_.try_emplace(icon.cacheKey());
    if (isNew) frame->second = sniPixmaps(icon);
    adaptor_->setIcon(frame->second);
  } else {
    adaptor_->setIcon(sniPixmaps(icon));
  }
  if (!icon.isNull() && !shown_) {
    shown_ = true;
    registrar_.ready(this);
  }
}

void StatusNotifierItem::setToolTip(const std::optional<std::string>& text) {
  adaptor_->setText(QString::fromStdString(text.value_or("")));
  // The state changed: a host that keeps the menu hears of its new lines.
  exporter_->refresh();
}

void StatusNotifierItem::setBusy(bool busy) {
  picture_.setBusy(busy);
  if (!busy) frames_.clear();
}

void StatusNotifierItem::setMenu(std::vector<StatusMenuEntry> entries) {
  menu_.setEntries(entries);
  exporter_->setEntries(std::move(entries));
}

bool StatusNotifierItem::showMessage(const std::string& title, const std::string& text) {
  bar_.notifications().show({title, text, {}, false}, 0, [title](const Result<Notifications::Id>& shown) {
    if (!shown) PXR_LOG_ERROR("No notification service showed “" + title + "”: " + shown.failure().reason);
  });
  return true;
}

} // namespace lb
