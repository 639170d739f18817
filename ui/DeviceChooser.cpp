#include "ui/DeviceChooser.h"

#include "core/DeviceSettingManager.h"
#include "ui/TrayImage.h"
#include "ui/UiText.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace lb {

namespace {

constexpr int addressRole = Qt::UserRole;

} // namespace

DeviceChooser::DeviceChooser(DeviceSettingManager& registry, Services& services, QWidget* parent)
    : QDialog(parent), registry_(registry), services_(services), list_(new QListWidget(this)),
      message_(new QLabel(this)), addButton_(new QPushButton(uiText("Add Device"), this)),
      settingsButton_(new QPushButton(uiText("Open Bluetooth &Settings"), this)) {
  setWindowTitle(uiText("Add a Device"));
  auto* intro = new QLabel(uiText("Select the Bluetooth device that you want to add to the menu bar:"), this);
  intro->setWordWrap(true);
  list_->setObjectName("paired");
  list_->setAccessibleName(uiText("Paired devices"));
  list_->setIconSize(QSize(24, 24));
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection); // Ctrl or Shift with a click takes several
  message_->setObjectName("message");
  message_->setWordWrap(true);
  addButton_->setObjectName("add");
  addButton_->setDefault(true);
  settingsButton_->setObjectName("bluetoothSettings");
  auto* byAddress = new QPushButton(uiText("Add by &Address…"), this);
  byAddress->setObjectName("addByAddress");

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  buttons->addButton(byAddress, QDialogButtonBox::ActionRole);
  buttons->addButton(addButton_, QDialogButtonBox::AcceptRole);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(addButton_, &QPushButton::clicked, this, &DeviceChooser::addChosen);
  connect(list_, &QListWidget::itemActivated, this, &DeviceChooser::addChosen);
  connect(list_, &QListWidget::itemSelectionChanged, this,
          [this] { addButton_->setEnabled(!list_->selectedItems().isEmpty()); });
  connect(settingsButton_, &QPushButton::clicked, this, &DeviceChooser::openBluetoothSettings);
  connect(byAddress, &QPushButton::clicked, this, [this] {
    emit addByAddress();
    reject();
  });

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(intro);
  layout->addWidget(list_);
  layout->addWidget(message_);
  layout->addWidget(settingsButton_, 0, Qt::AlignLeft);
  layout->addWidget(buttons);
  resize(440, 360);

  pairing_ = services_.bluetooth.registerForPairingChanges([this] { refresh(); });
  refresh();
}

DeviceChooser::~DeviceChooser() = default;

void DeviceChooser::refresh() {
  QStringList chosen;
  for (const auto* item : list_->selectedItems()) chosen << item->data(addressRole).toString();
  const QColor ink = palette().color(QPalette::WindowText);
  const auto paired = services_.bluetooth.pairedDevices();
  list_->clear();
  for (const auto& device : paired) {
    if (device.address.empty() || registry_.find(device.address)) continue;
    const auto picture = services_.images.named(std::string(rawValue(iconForClassOfDevice(device.classOfDevice))));
    const auto name = device.name.empty() ? device.address : device.name;
    auto* item = new QListWidgetItem(TrayImage::iconOf(picture, ink),
                                     QString::fromStdString(name + "   " + device.address), list_);
    item->setData(addressRole, QString::fromStdString(device.address));
    if (chosen.contains(item->data(addressRole).toString()) || list_->count() == 1) item->setSelected(true);
  }
  const bool any = list_->count() > 0;
  message_->setText(any ? QString()
                    : !services_.bluetooth.isAvailable()
                        ? uiText("The Bluetooth service is not running, so Lanternbud cannot see the paired devices. "
                                 "Start it with “sudo systemctl start bluetooth” in a terminal, and they appear here.")
                    : paired.empty()
                        ? uiText("No Bluetooth device is paired with this computer. Pair one in your desktop’s "
                                 "Bluetooth settings, and it appears here.")
                        : uiText("Every paired device is in Lanternbud already. Pair another one in your desktop’s "
                                 "Bluetooth settings, and it appears here."));
  message_->setVisible(!any);
  settingsButton_->setVisible(!any);
  addButton_->setEnabled(!list_->selectedItems().isEmpty());
}

// Every device chosen; one that cannot be added is said, and the dialog
// stays open with it.
void DeviceChooser::addChosen() {
  const auto chosen = list_->selectedItems();
  if (chosen.isEmpty()) return;
  bool allAdded = true;
  for (const auto* item : chosen) {
    const auto address = item->data(addressRole).toString().toStdString();
    const auto outcome = registry_.add(address);
    using enum DeviceSettingManager::AddError;
    if (outcome || outcome.failure() == notSaved) { // the window says that nothing is saved
      emit added(registry_.find(address)->deviceID());
      continue;
    }
    allAdded = false;
    message_->setText(outcome.failure() == alreadyAdded ? uiText("The device has already been added.")
                                                        : uiText("The device is no longer paired with this computer."));
    message_->show();
  }
  if (allAdded) accept();
}

void DeviceChooser::openBluetoothSettings() {
  if (services_.desktopSettings.openBluetoothSettings()) return;
  message_->setText(uiText("No Bluetooth settings program was found. Pair the device in a terminal with "
                           "bluetoothctl (scan on, then pair and trust its address), and it appears here."));
  message_->show();
}

} // namespace lb
