#include "ui/StatusNotifierRegistrar.h"

#include "core/LogAreas.h"
#include "ui/StatusNotifierItem.h"
#include "ui/TrayHost.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <algorithm>
#include <chrono>

namespace lb {

namespace {

using namespace std::chrono_literals;
// After the host read the item: time for it to save what it read.
constexpr auto settle = 150ms;
// For a host that reads items later, or not at once.
constexpr auto unread = 1s;

} // namespace

StatusNotifierRegistrar::StatusNotifierRegistrar(const QDBusConnection& session)
    : watcher_(TrayHost::watcherService, session, QDBusServiceWatcher::WatchForOwnerChange) {
  pause_.setSingleShot(true);
  connect(&pause_, &QTimer::timeout, this, [this] { registerNext(); });
  connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString&, const QString& owner) {
            if (owner.isEmpty()) return;
            PXR_LOG(trayLog(), "The tray's watcher is new; registering", entries_.size(), "items again");
            for (auto& entry : entries_) entry.registered = false;
            awaited_ = nullptr; // an answer from the old watcher no longer counts
            pause_.stop();
            registerNext();
          });
}

void StatusNotifierRegistrar::add(StatusNotifierItem* item) { entries_.push_back({item}); }

void StatusNotifierRegistrar::ready(StatusNotifierItem* item) {
  for (auto& entry : entries_) {
    if (entry.item == item) entry.ready = true;
  }
  registerNext();
}

void StatusNotifierRegistrar::remove(StatusNotifierItem* item) {
  std::erase_if(entries_, [item](const Entry& entry) { return entry.item == item; });
  if (paced_ == item) paced_ = nullptr;
  if (awaited_ == item) {
    awaited_ = nullptr;
    registerNext();
  }
}

void StatusNotifierRegistrar::registerNext() {
  if (awaited_ || pause_.isActive()) return;
  auto next = std::find_if(entries_.begin(), entries_.end(),
                           [](const Entry& entry) { return entry.ready && !entry.registered; });
  if (next == entries_.end()) return;
  auto* item = next->item;
  awaited_ = paced_ = item;
  hostRead_ = false;
  item->whenHostReads([this, item] {
    if (item != paced_) return;
    hostRead_ = true;
    if (pause_.isActive() && pause_.remainingTimeAsDuration() > settle) pause_.start(settle);
  });
  auto call = QDBusMessage::createMethodCall(TrayHost::watcherService, "/StatusNotifierWatcher",
                                             TrayHost::watcherService, "RegisterStatusNotifierItem");
  call << item->serviceName();
  // From the item's own connection: a watcher may take the sender as the item.
  auto* pending = new QDBusPendingCallWatcher(item->connection().asyncCall(call), this);
  connect(pending, &QDBusPendingCallWatcher::finished, this, [this, item](QDBusPendingCallWatcher* answer) {
    answer->deleteLater();
    if (awaited_ != item) return;
    if (answer->isError()) {
      // No watcher now: the next one to come hears of every item.
      PXR_LOG(trayLog(), "The tray did not take", item->serviceName().toStdString(), "-",
              answer->error().message().toStdString());
    }
    answered(item, !answer->isError());
  });
}

void StatusNotifierRegistrar::answered(StatusNotifierItem* item, bool taken) {
  awaited_ = nullptr;
  for (auto& entry : entries_) {
    if (entry.item == item) entry.registered = true;
  }
  if (taken) pause_.start(hostRead_ ? settle : unread);
  registerNext();
}

} // namespace lb
