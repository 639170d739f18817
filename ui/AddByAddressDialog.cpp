#include "ui/AddByAddressDialog.h"

#include "core/DeviceSettingManager.h"
#include "foundation/BluetoothAddress.h"
#include "ui/UiText.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace lb {

AddByAddressDialog::AddByAddressDialog(DeviceSettingManager& registry, Services& services, QWidget* parent)
    : QDialog(parent), registry_(registry), services_(services), address_(new QLineEdit(this)),
      problem_(new QLabel(this)), addButton_(new QPushButton(uiText("Add Device"), this)) {
  setWindowTitle(uiText("Add by Address"));
  auto* message = new QLabel(uiText("Enter the address of a Bluetooth device to add it manually."), this);
  auto font = message->font();
  font.setBold(true);
  message->setFont(font);
  auto* informative = new QLabel(
      uiText("To find the address, go to System Preferences ‣ Bluetooth and make sure that “Show Bluetooth in menu "
             "bar” is checked. Then Option-click the macOS Bluetooth menu at the top of the screen and look for the "
             "address under the device."),
      this);
  informative->setWordWrap(true);
  address_->setObjectName("address");
  address_->setPlaceholderText("e0-eb-40-39-80-9b");
  address_->setAccessibleName(uiText("Bluetooth address"));
  problem_->setObjectName("problem");
  problem_->setWordWrap(true);
  problem_->hide();
  addButton_->setObjectName("add");
  addButton_->setDefault(true);
  addButton_->setEnabled(false);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  buttons->addButton(addButton_, QDialogButtonBox::AcceptRole);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(addButton_, &QPushButton::clicked, this, &AddByAddressDialog::add);
  connect(address_, &QLineEdit::textChanged, this, [this](const QString& text) {
    addButton_->setEnabled(normalized(text).has_value());
    problem_->hide();
  });

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(message);
  layout->addWidget(informative);
  layout->addWidget(address_);
  layout->addWidget(problem_);
  layout->addWidget(buttons);
  setMinimumWidth(420);
}

std::optional<std::string> AddByAddressDialog::normalized(const QString& typed) {
  auto address = BluetoothAddress::parse(typed.trimmed().toStdString());
  if (!address) return std::nullopt;
  return address->toString();
}

void AddByAddressDialog::add() {
  const auto address = normalized(address_->text());
  if (!address) return;
  address_->setText(QString::fromStdString(*address));
  auto say = [this](const std::string& text) {
    problem_->setText(QString::fromStdString(text));
    problem_->show();
    adjustSize(); // taller by the message's lines
  };
  // Added but not saved is added: the window says that nothing is saved.
  const auto outcome = registry_.add(*address);
  using enum DeviceSettingManager::AddError;
  if (outcome || outcome.failure() == notSaved) {
    emit added(registry_.find(*address)->deviceID());
    return accept();
  }
  if (outcome.failure() == alreadyAdded) return say(localized("The device has already been added."));
  say(formatted(localized("This computer knows no Bluetooth device at %@. Pair the device in your desktop’s "
                          "Bluetooth settings first, then add it here."),
                *address));
}

} // namespace lb
