#include "ui/TrayMenu.h"

#include "core/LogAreas.h"

#include <QCursor>
#include <QGuiApplication>

namespace lb {

namespace {

// A title is shown as it stands: no mnemonics.
QString menuText(const std::string& title) { return QString::fromStdString(title).replace("&", "&&"); }

} // namespace

TrayMenu::TrayMenu() {
  QObject::connect(&menu_, &QMenu::aboutToShow, [this] { refreshTitles(); });
}

void TrayMenu::setEntries(std::vector<StatusMenuEntry> entries) {
  menu_.clear();
  actions_.clear();
  entries_ = std::move(entries);
  for (const auto& entry : entries_) {
    if (!entry.title) {
      actions_.push_back(menu_.addSeparator());
      continue;
    }
    auto* action = menu_.addAction(QString());
    action->setEnabled(bool(entry.action));
    // Queued: an action may give the menu new entries, deleting this one.
    if (entry.action) QObject::connect(action, &QAction::triggered, &menu_, entry.action, Qt::QueuedConnection);
    actions_.push_back(action);
  }
  refreshTitles();
}

void TrayMenu::setAccessibleName(const QString& name) {
  menu_.setTitle(name);
  menu_.setAccessibleName(name);
}

void TrayMenu::refreshTitles() {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].title) actions_[i]->setText(menuText(entries_[i].title()));
  }
}

bool TrayMenu::canPopUp() { return QGuiApplication::platformName() != "wayland"; }

void TrayMenu::popUp() {
  if (!canPopUp()) {
    PXR_LOG(trayLog(), "The menu opens with a right click on Wayland.");
    return;
  }
  menu_.popup(QCursor::pos());
}

} // namespace lb
