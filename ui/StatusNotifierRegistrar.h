#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>

#include <vector>

namespace lb {

class StatusNotifierItem;

// Tells the session's StatusNotifierWatcher of the items, one after the
// other in the order they were made (the device list's). Each waits for the
// previous one's registration to be answered and read by the host, and a
// moment more: Xfce's panel shows only items it has saved as known, and
// loses one that comes while it saves the one before. A new watcher (a
// restarted panel) hears of them all again, in the same order.
class StatusNotifierRegistrar final : public QObject {
public:
  explicit StatusNotifierRegistrar(const QDBusConnection& session);

  // In the order the items are made; registered once `ready`.
  void add(StatusNotifierItem* item);
  void ready(StatusNotifierItem* item);
  void remove(StatusNotifierItem* item);

private:
  struct Entry {
    StatusNotifierItem* item;
    bool ready = false;
    bool registered = false;
  };
  // Registers the first ready item not yet registered, unless one is awaited.
  void registerNext();
  void answered(StatusNotifierItem* item, bool taken);

  QDBusServiceWatcher watcher_;
  std::vector<Entry> entries_;
  StatusNotifierItem* awaited_ = nullptr;
  StatusNotifierItem* paced_ = nullptr; // the last item registered: the pause is for it
  bool hostRead_ = false;               // whether the host has read it
  QTimer pause_;                        // between one registration and the next
};

} // namespace lb
