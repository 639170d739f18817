#pragma once

#include "ports/StatusBar.h"
#include "ui/StatusNotifierTypes.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>

#include <functional>

namespace lb {

// The org.kde.StatusNotifierItem interface of one tray item: what a host
// reads (every property it may ask for answers) and the clicks it reports.
// A setter tells the host only of a value that really changed.
class StatusNotifierItemAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
  Q_PROPERTY(QString Category READ category)
  Q_PROPERTY(QString Id READ id)
  Q_PROPERTY(QString Title READ title)
  Q_PROPERTY(QString Status READ status)
  Q_PROPERTY(int WindowId READ windowId)
  Q_PROPERTY(QString IconThemePath READ noName)
  Q_PROPERTY(QDBusObjectPath Menu READ menu)
  Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
  Q_PROPERTY(QString IconName READ noName)
  Q_PROPERTY(lb::SniPixmaps IconPixmap READ iconPixmap)
  Q_PROPERTY(QString OverlayIconName READ noName)
  Q_PROPERTY(lb::SniPixmaps OverlayIconPixmap READ noPixmaps)
  Q_PROPERTY(QString AttentionIconName READ noName)
  Q_PROPERTY(lb::SniPixmaps AttentionIconPixmap READ noPixmaps)
  Q_PROPERTY(QString AttentionMovieName READ noName)
  Q_PROPERTY(lb::SniToolTip ToolTip READ toolTip)
  Q_PROPERTY(QString IconAccessibleDesc READ iconAccessibleDesc)
  Q_PROPERTY(QString AttentionAccessibleDesc READ noName)

public:
  StatusNotifierItemAdaptor(QObject* object, QString id, QDBusObjectPath menu);

  // The device's name: the title, and the tool tip's.
  void setTitle(const QString& title);
  void setIcon(SniPixmaps pixmaps);
  // The state and battery: the tool tip's text and what a screen reader says.
  void setText(const QString& text);
  std::function<void(StatusItemClick::Button)> onClick;
  // Told each time the host reads the Id, the title or the picture, as it
  // does when it takes the item in.
  std::function<void()> onRead;

  QString category() const { return "Hardware"; }
  QString id() const { return read(id_); }
  QString title() const { return read(toolTip_.title); }
  QString status() const { return "Active"; }
  int windowId() const { return 0; }
  QString noName() const { return {}; }
  QDBusObjectPath menu() const { return menu_; }
  bool itemIsMenu() const { return false; }
  SniPixmaps iconPixmap() const { return read(pixmaps_); }
  SniPixmaps noPixmaps() const { return {}; }
  SniToolTip toolTip() const { return toolTip_; }
  QString iconAccessibleDesc() const { return toolTip_.text.isEmpty() ? toolTip_.title : toolTip_.text; }

public slots:
  void Activate(int x, int y);
  void SecondaryActivate(int x, int y);
  void ContextMenu(int x, int y);
  void Scroll(int delta, const QString& orientation);

signals:
  void NewTitle();
  void NewIcon();
  void NewAttentionIcon();
  void NewOverlayIcon();
  void NewToolTip();
  void NewStatus(const QString& status);

private:
  void click(StatusItemClick::Button button);
  template <typename Value>
  const Value& read(const Value& value) const {
    if (onRead) onRead();
    return value;
  }

  QString id_;
  QDBusObjectPath menu_;
  SniPixmaps pixmaps_;
  SniToolTip toolTip_;
};

} // namespace lb
