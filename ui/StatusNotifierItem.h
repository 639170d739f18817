#pragma once

#include "ui/StatusNotifierTypes.h"
#include "ui/TrayMenu.h"
#include "ui/TrayPicture.h"
#include "ui/TrayStatusBar.h"

#include <QDBusConnection>
#include <QObject>

#include <map>

namespace lb {

class DBusMenuExporter;
class StatusNotifierItemAdaptor;
class StatusNotifierRegistrar;

// A device's item in a StatusNotifierItem tray, on a bus connection of its
// own ("org.kde.StatusNotifierItem-<pid>-<n>"), with its menu over
// dbusmenu. Its Id is the device's identity and its Title the device's
// name, so that a host lists, hides and names each device apart. It enters
// the tray with its first picture.
class StatusNotifierItem final : public PaintedStatusItem {
public:
  StatusNotifierItem(TrayStatusBar& bar, StatusNotifierRegistrar& registrar, const QString& identity, int serial);
  ~StatusNotifierItem() override;

  void setAccessibilityLabel(const std::optional<std::string>& label) override;
  void setImage(std::shared_ptr<Image> image) override { picture_.setImage(std::move(image)); }
  std::shared_ptr<Image> image() const override { return picture_.image(); }
  void setToolTip(const std::optional<std::string>& text) override;
  void setBusy(bool busy) override;
  void setMenu(std::vector<StatusMenuEntry> entries) override;
  void popUpMenu() override { menu_.popUp(); }
  bool canPopUpMenu() const override { return TrayMenu::canPopUp(); }
  void setClickHandler(ClickHandler handler) override { onClick_ = std::move(handler); }
  bool showMessage(const std::string& title, const std::string& text) override;
  void redraw() override { picture_.redraw(); }

  const QString& serviceName() const { return serviceName_; }
  // Called when the host reads the item in.
  void whenHostReads(std::function<void()> read);
  QDBusConnection connection() const { return QDBusConnection(connectionName_); }

private:
  void setIcon(const QIcon& icon);

  TrayStatusBar& bar_;
  StatusNotifierRegistrar& registrar_;
  QString connectionName_;
  QString serviceName_;
  QObject itemObject_;
  QObject menuObject_;
  StatusNotifierItemAdaptor* adaptor_; // owned by itemObject_
  DBusMenuExporter* exporter_;         // owned by menuObject_
  TrayMenu menu_;
  bool shown_ = false;
  std::map<qint64, SniPixmaps> frames_; // the spinner's, sent again each turn
  TrayPicture picture_;
  ClickHandler onClick_;
};

} // namespace lb
