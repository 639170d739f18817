#include "ui/PreferencesWindow.h"

#include "core/DeviceSettingManager.h"
#include "ui/AboutPane.h"
#include "ui/DeviceListPane.h"
#include "ui/UiText.h"

#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <QWindow>

namespace lb {

PreferencesWindow::PreferencesWindow(DeviceSettingManager& registry, Services& services, DiagnosticReporter& reporter)
    : registry_(registry), services_(services), tabs_(new QTabWidget(this)),
      pane_(new DeviceListPane(registry, services, this)), saveState_(new QLabel(this)) {
  setWindowTitle(uiText("Lanternbud Settings"));
  setObjectName("preferences");
  tabs_->addTab(pane_, uiText("&Devices"));
  tabs_->addTab(new AboutPane(services, reporter, this), uiText("Ab&out"));
  tabs_->setAccessibleName(uiText("Settings"));

  saveState_->setObjectName("saveState");
  saveState_->setWordWrap(true);
  saveState_->setAccessibleName(uiText("Save state"));
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  buttons->button(QDialogButtonBox::Close)->setAccessibleName(uiText("Close"));
  buttons->button(QDialogButtonBox::Close)->setObjectName("close");
  connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);

  auto* bottom = new QHBoxLayout;
  bottom->addWidget(saveState_, 1);
  bottom->addWidget(buttons);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tabs_);
  layout->addLayout(bottom);

  connect(pane_, &DeviceListPane::saved, this, &PreferencesWindow::showSaveState);
  showSaveState();
}

PreferencesWindow::~PreferencesWindow() = default;

void PreferencesWindow::present(std::optional<std::int64_t> deviceID) {
  pane_->select(deviceID);
  show();
  raise();
  activateWindow();
  if (windowHandle()->isExposed()) return pane_->offerChooserWhenEmpty();
  windowHandle()->installEventFilter(this); // until then
}

bool PreferencesWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == windowHandle() && event->type() == QEvent::Expose && windowHandle()->isExposed()) {
    windowHandle()->removeEventFilter(this);
    QMetaObject::invokeMethod(pane_, &DeviceListPane::offerChooserWhenEmpty, Qt::QueuedConnection);
  }
  return QWidget::eventFilter(watched, event);
}

void PreferencesWindow::closeEvent(QCloseEvent* event) {
  registry_.synchronize();
  showSaveState();
  event->accept();
}

void PreferencesWindow::showSaveState() {
  if (auto problem = services_.defaults.saveProblem()) {
    saveState_->setText(QString::fromStdString(
        formatted(localized("Your changes could not be saved (%@); they apply until Lanternbud quits."), *problem)));
  } else {
    saveState_->setText(uiText("Changes are saved as you make them."));
  }
}

} // namespace lb
