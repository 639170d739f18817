#pragma once

#include <QDialog>

#include <cstdint>
#include <optional>
#include <string>

class QLabel;
class QLineEdit;
class QPushButton;

namespace lb {

class DeviceSettingManager;
struct Services;

// Adds a device by its Bluetooth address, typed in any of the usual forms.
// Add Device is enabled for a well-formed address; one the system does not
// know, or one already added, is said in the dialog.
class AddByAddressDialog final : public QDialog {
  Q_OBJECT
public:
  AddByAddressDialog(DeviceSettingManager& registry, Services& services, QWidget* parent);

  // "AA:BB:CC:DD:EE:FF" for what was typed, if it is an address: six pairs
  // of hexadecimal digits with ':', '-' or '_' between them, or none.
  static std::optional<std::string> normalized(const QString& typed);

signals:
  void added(std::int64_t deviceID);

private:
  void add();

  DeviceSettingManager& registry_;
  Services& services_;
  QLineEdit* address_;
  QLabel* problem_;
  QPushButton* addButton_;
};

} // namespace lb
