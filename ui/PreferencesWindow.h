#pragma once

#include <QWidget>

#include <cstdint>
#include <optional>

class QLabel;
class QTabWidget;

namespace lb {

class DeviceListPane;
class DiagnosticReporter;
class DeviceSettingManager;
struct Services;

// "Lanternbud Settings": one window of tabs, the devices and About. Every change
// is saved as it is made, and the window says whether it was; closing saves
// the device list once more.
class PreferencesWindow final : public QWidget {
  Q_OBJECT
public:
  PreferencesWindow(DeviceSettingManager& registry, Services& services, DiagnosticReporter& reporter);
  ~PreferencesWindow() override;

  // Shows and raises the window, at the device with this ID when it is
  // listed; otherwise the selection stays.
  void present(std::optional<std::int64_t> deviceID);

  DeviceListPane& devicePane() const { return *pane_; }

protected:
  void closeEvent(QCloseEvent* event) override;
  // Waits for the window's first exposure: only then has the window manager
  // placed it, and a dialog opened over it lands there.
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void showSaveState();

  DeviceSettingManager& registry_;
  Services& services_;
  QTabWidget* tabs_;
  DeviceListPane* pane_;
  QLabel* saveState_;
};

} // namespace lb
