#include "app/Platform.h"

#include "app/LoggingAlerts.h"
#include "app/LoggingStatusBar.h"
#include "ui/DialogAlerts.h"
#include "ui/TrayStatusBar.h"

#include "app/NoGlobalKeys.h"
#include "linux/bluez/BluezBluetooth.h"
#include "linux/desktop/PortalGlobalKeys.h"
#include "linux/desktop/X11GlobalKeys.h"
#include "linux/battery/LinuxBatterySources.h"
#include "linux/audio/PulseAudioSystem.h"
#include "linux/xdg/XdgAutostart.h"
#include "foundation/JsonSettingsStore.h"
#include "linux/xdg/XdgBatteryHistoryFiles.h"
#include "foundation/XdgDirectories.h"
#include "sim/SimLoginItems.h"

#include <QCoreApplication>
#include <QGuiApplication>

namespace lb {

namespace {

// By the session: under XWayland, X11 grabs fire only while an X window has
// the focus, so a Wayland session asks the portal.
std::unique_ptr<GlobalKeys> globalKeys() {
  const bool wayland = qgetenv("XDG_SESSION_TYPE") == "wayland" || QGuiApplication::platformName() == "wayland";
  if (wayland) {
    if (auto portal = PortalGlobalKeys::make(QDBusConnection::sessionBus())) return portal;
  } else if (auto x11 = X11GlobalKeys::make()) {
    return x11;
  }
  return std::make_unique<NoGlobalKeys>();
}

// Installed beside the program, else in the source tree it was built from.
std::vector<std::filesystem::path> helpFolders() {
  const std::filesystem::path program = QCoreApplication::applicationDirPath().toStdString();
  return {program.parent_path() / "share/lanternbud/help", LANTERNBUD_HELP_DIR};
}
} // namespace

Platform::Platform(UserDefaults& defaults, Tunables& tunables, std::string backend, std::filesystem::path scriptsFolder,
                   Desktop desktop)
    : defaults_(defaults), tunables_(tunables), backend_(std::move(backend)), windows_(desktop.display),
      globalKeys_(globalKeys()), shortcuts_(std::make_unique<ShortcutBinder>(defaults, *globalKeys_)),
      scriptsFolder_(std::move(scriptsFolder)) {
  if (desktop.tray != TrayHost::Kind::none) {
    statusBar_ = std::make_unique<TrayStatusBar>(desktop.tray, notifications_);
  } else {
    statusBar_ = std::make_unique<LoggingStatusBar>();
  }
  if (desktop.display) {
    alerts_ = std::make_unique<DialogAlerts>(helpFolders());
  } else {
    alerts_ = std::make_unique<LoggingAlerts>(helpFolders().back().string());
  }
}

Platform::~Platform() = default;

std::unique_ptr<Platform> Platform::real(UserDefaults& defaults, Tunables& tunables, const std::string& helperPath,
                                         Desktop desktop) {
  std::unique_ptr<Platform> platform(
      new Platform(defaults, tunables, "Using BlueZ on the system bus", XdgScriptsFolder::defaultFolder(), desktop));
  auto system = QDBusConnection::systemBus();
  auto bluez = std::make_unique<BluezBluetooth>(system);
  auto& bluetooth = *bluez;
  platform->bluez_ = std::move(bluez);
  platform->upower_ = std::make_unique<UPowerRegistry>(system);
  platform->batterySources_ = std::make_unique<LinuxBatterySources>(*platform->upower_, HelperTool(helperPath));
  platform->pulse_ = std::make_unique<PulseAudioSystem>();
  platform->loginItems_ = std::make_unique<XdgAutostart>(XdgAutostart::defaultEntryFile(),
                                                         QCoreApplication::applicationFilePath().toStdString());
  platform->wire(bluetooth, *platform->pulse_, *platform->batterySources_, *platform->loginItems_, "");
  return platform;
}

std::unique_ptr<Platform> Platform::demo(UserDefaults& defaults, Tunables& tunables, Desktop desktop) {
  std::unique_ptr<Platform> platform(new Platform(defaults, tunables, "Using simulated devices",
                                                  XdgDirectories::dataHome() / "lanternbud/Demo Scripts", desktop));
  platform->demo_ = std::make_unique<DemoWorld>(platform->loop_);
  platform->loginItems_ = std::make_unique<SimLoginItems>();
  auto& demo = *platform->demo_;
  platform->wire(demo.bluetooth, demo.audio, demo.batterySources, *platform->loginItems_, "demo-");
  return platform;
}

std::optional<std::uint64_t> Platform::soundServerRequests() const {
  if (!pulse_) return std::nullopt;
  return pulse_->requestsSent();
}

void Platform::wire(Bluetooth& bluetooth, AudioSystem& audio, BatterySources& batterySources, LoginItems& loginItems,
                    const std::string& stateNamePrefix) {
  audioHardware_ = std::make_unique<AudioHardware>(audio, loop_);
  outputDeviceManager_ = std::make_unique<OutputDeviceManager>(*audioHardware_, tunables_);
  inputDeviceManager_ = std::make_unique<InputDeviceManager>(*audioHardware_, tunables_, loop_);
  batteryInfo_ = std::make_unique<BatteryInfo>(batterySources, tunables_, loop_, loop_.now());
  deviceInfoCache_ = std::make_unique<DeviceInfoCache>(loop_, 1000, tunables_(tunable::DeviceInfoStalenessInterval));
  warningState_ = std::make_unique<JsonSettingsStore>(XdgDirectories::stateHome() / "lanternbud" /
                                                      (stateNamePrefix + "battery-warnings.json"));
  lowBatteryWarnings_ = std::make_unique<LowBatteryWarnings>(notifications_, *warningState_, desktopSettings_,
                                                             tunables_, loop_);
  historyFiles_ = std::make_unique<XdgBatteryHistoryFiles>(
      XdgBatteryHistoryFiles::folderNamed(stateNamePrefix + "battery-history"));
  batteryHistories_ = std::make_unique<BatteryHistories>(*historyFiles_, loop_);
  services_ = std::make_unique<Services>(Services{loop_,
                                                  bluetooth,
                                                  *statusBar_,
                                                  images_,
                                                  windows_,
                                                  *shortcuts_,
                                                  loginItems,
                                                  scriptsFolder_,
                                                  scriptRunner_,
                                                  collator_,
                                                  *alerts_,
                                                  operatingSystem_,
                                                  desktopSettings_,
                                                  defaults_,
                                                  tunables_,
                                                  *outputDeviceManager_,
                                                  *inputDeviceManager_,
                                                  *batteryInfo_,
                                                  *deviceInfoCache_,
                                                  *lowBatteryWarnings_,
                                                  *batteryHistories_});
}

} // namespace lb
