#pragma once

#include "foundation/Listeners.h"

#include <QDialog>

#include <cstdint>
#include <memory>

class QLabel;
class QListWidget;
class QPushButton;

namespace lb {

class DeviceSettingManager;
struct Services;

// Chooses a device to add: the devices paired with this computer that are
// not in Lanternbud yet, kept current while open. Pairing is the desktop's
// business; with nothing to choose the dialog says so and offers the
// desktop's Bluetooth settings.
class DeviceChooser final : public QDialog {
  Q_OBJECT
public:
  DeviceChooser(DeviceSettingManager& registry, Services& services, QWidget* parent);
  ~DeviceChooser() override;

signals:
  void added(std::int64_t deviceID);
  void addByAddress();

private:
  void refresh();
  void addChosen();
  void openBluetoothSettings();

  DeviceSettingManager& registry_;
  Services& services_;
  QListWidget* list_;
  QLabel* message_;
  QPushButton* addButton_;
  QPushButton* settingsButton_;
  std::unique_ptr<NotificationRegistration> pairing_;
};

} // namespace lb
