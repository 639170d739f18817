#pragma once

#include "foundation/Listeners.h"

#include <QPointer>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <optional>

class QCheckBox;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QToolButton;

namespace lb {

class BatteryHistoryPlot;
class DeviceChooser;
class IconPicker;
class DeviceSetting;
class DeviceSettingManager;
class ShortcutRecorder;
struct Services;

// The devices tab: the list of devices in the registry's order, and for the
// selected one its name, its picture, its options, its scripts and its
// battery's history; adding
// from BlueZ's paired devices or by address, removing, and starting at
// login. Every change applies at once and is saved at once.
class DeviceListPane final : public QWidget {
  Q_OBJECT
public:
  DeviceListPane(DeviceSettingManager& registry, Services& services, QWidget* parent);
  ~DeviceListPane() override;

  // None exactly when the list is empty.
  std::shared_ptr<DeviceSetting> selectedDeviceSetting() const;
  // Selects the device with this ID when it is listed; otherwise keeps the
  // selection, or selects the first row.
  void select(std::optional<std::int64_t> deviceID);

  // The chooser of paired devices; the one already open is raised.
  void addNewDevice();
  // The dialog that adds a device by its address.
  void addNewDeviceManually();
  void removeSelectedDevice();
  // With no devices the chooser opens at once: there is nothing else to do.
  void offerChooserWhenEmpty();

signals:
  // A change was written to the settings (or failed to be).
  void saved();

protected:
  // The pictures are drawn in the palette's text colour: a new theme
  // redraws them.
  void changeEvent(QEvent* event) override;

private:
  struct Switch;

  // Rebuilds the rows, keeping the selected device selected.
  void reload();
  void selectRow(int row);
  // The detail area for the selected device.
  void showSelected();
  void showRow(QListWidgetItem& item, DeviceSetting& setting);
  QIcon pictureOf(const DeviceSetting& setting) const;
  void deviceChanged(const DeviceSetting* changed);
  void openAdvancedSheet();
  void added(std::int64_t deviceID);

  DeviceSettingManager& registry_;
  Services& services_;
  QListWidget* list_;
  QLabel* deviceLabel_;
  QToolButton* iconButton_;
  ShortcutRecorder* shortcut_;
  IconPicker* picker_;
  std::vector<Switch> switches_;
  QPushButton* advancedButton_;
  QPushButton* removeButton_;
  BatteryHistoryPlot* batteryPlot_;
  QCheckBox* launchAtLogin_;
  QPointer<DeviceChooser> chooser_;
  std::unique_ptr<NotificationRegistration> changes_;
  std::unique_ptr<NotificationRegistration> settingChanges_;
};

} // namespace lb
