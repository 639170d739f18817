#pragma once

#include <QDialog>

#include <memory>

class QCheckBox;
class QLabel;
class QPlainTextEdit;

namespace lb {

class DeviceSetting;
struct Services;

// A device's connect and disconnect scripts: two editors that keep the text
// exactly as typed, their switches, and help. Done writes the files; when
// that fails the sheet says why and keeps the text.
class AdvancedSheet final : public QDialog {
  Q_OBJECT
public:
  AdvancedSheet(std::shared_ptr<DeviceSetting> setting, Services& services, QWidget* parent);

  const DeviceSetting& deviceSetting() const { return *setting_; }

signals:
  // The scripts and their switches were written.
  void scriptsChanged();

private:
  void done();

  std::shared_ptr<DeviceSetting> setting_;
  Services& services_;
  QCheckBox* runConnected_;
  QPlainTextEdit* connected_;
  QCheckBox* runDisconnected_;
  QPlainTextEdit* disconnected_;
  QLabel* problem_;
};

} // namespace lb
