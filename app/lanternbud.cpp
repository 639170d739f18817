// lanternbud: the program, or with "-PrintBatteryInfo <address>" (also as
// LanternbudHelperTool) its battery print mode.
#include "app/Program.h"
#include "app/Translations.h"
#include "core/AppDelegate.h"
#include "core/SettingKeys.h"
#include "core/Tunables.h"
#include "foundation/BluetoothAddress.h"
#include "foundation/JsonSettingsStore.h"
#include "linux/logging/LinuxLogger.h"
#include "ui/PaletteIconStyle.h"

#include <QApplication>
#include <QStyle>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

namespace {

constexpr const char* usage = R"(Usage: lanternbud [--demo] [-Key value ...]
       lanternbud -PrintBatteryInfo <address>

Puts every paired Bluetooth device the user has added in the tray and
connects or disconnects it on a click, on its shortcut or through
lanternbud-ctl.

  --demo        run with simulated devices instead of BlueZ and the sound
                server; the demo keeps its own settings and scripts
  -Key value    a setting for this run only: -LogConnect YES, -ConnectionWaitInterval 2
  -PrintBatteryInfo <address>
                print the device's battery levels as an XML property list
                and exit
  --help        this text

A second lanternbud asks the running one to show its preferences and exits.
)";

bool has(const std::vector<std::string>& words, const std::string& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

// What makes the command line unusable, said to the user, who gets the usage
// and exit status 2: a whole program must not start on a mistyped helper call.
std::optional<std::string> commandLineProblem(const std::vector<std::string>& words,
                                              const lb::UserDefaults::Arguments& commandLine,
                                              const std::string& processName) {
  if (commandLine.contains(lb::settingKey::devices)) {
    return "the device list cannot be given on the command line; while Lanternbud runs, use "
           "lanternbud-ctl add and lanternbud-ctl remove.";
  }
  const auto address = commandLine.find("PrintBatteryInfo");
  if (address == commandLine.end()) {
    if (has(words, "-PrintBatteryInfo")) return "-PrintBatteryInfo needs a Bluetooth address.";
    if (processName == "LanternbudHelperTool") return "LanternbudHelperTool needs -PrintBatteryInfo <address>.";
    return std::nullopt;
  }
  if (!lb::BluetoothAddress::parse(address->second)) {
    return "\"" + address->second + "\" is not a Bluetooth address (six pairs of hexadecimal digits).";
  }
  return std::nullopt;
}

} // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (has(words, "--help") || has(words, "-h")) {
    std::cout << usage;
    return 0;
  }
  const auto processName = std::filesystem::path(argv[0]).filename().string();
  const auto commandLine = lb::UserDefaults::argumentDomain(words);
  if (auto problem = commandLineProblem(words, commandLine, processName)) {
    std::cerr << "lanternbud: " << *problem << "\n\n" << usage;
    return 2;
  }
  const bool demo = has(words, "--demo");
  // The tray needs a display; without one (a service, a test) the program
  // runs all the same, its tray only in the log.
  const bool display = !commandLine.contains("PrintBatteryInfo") &&
                       (!qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"));
  std::unique_ptr<QCoreApplication> qt;
  if (display) {
    // A display that cannot be reached leaves the program without a tray,
    // not aborted.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "xcb;wayland;offscreen");
    auto application = std::make_unique<QApplication>(argc, argv);
    application->setQuitOnLastWindowClosed(false); // a closed dialog does not end a tray program
    QApplication::setStyle(new lb::PaletteIconStyle(QApplication::style()->name()));
    qt = std::move(application);
  } else {
    qt = std::make_unique<QCoreApplication>(argc, argv);
  }
  const auto helperPath = QCoreApplication::applicationDirPath().toStdString() + "/LanternbudHelperTool";

  const auto settingsFile = lb::JsonSettingsStore::defaultFile();
  lb::JsonSettingsStore store(demo ? settingsFile.parent_path() / "demo-settings.json" : settingsFile);
  lb::UserDefaults defaults(store, commandLine);
  // The start's lines, and without a tray what its items would show, are
  // what a user sees at a terminal.
  defaults.registerDefaults({{"LogLaunch", true}, {"LogTray", true}});
  // The demo's earbuds run down a point every 3 s: read every 2 s, each
  // warning comes at its level, and a minute of that fall is a trend.
  if (demo) {
    defaults.registerDefaults({{std::string(lb::tunable::DeviceInfoStalenessInterval.key), 2.0},
                               {std::string(lb::tunable::BatteryEstimateMinimumSpan.key), 60.0}});
  }
  lb::LinuxLogger::install([&defaults](const std::string& area) { return defaults.boolValue(area, false); },
                           processName);
  lb::installTranslations();
  lb::Tunables tunables(defaults);

  int status = 0;
  lb::AppDelegate::processEntry(
      commandLine,
      [&](const std::string& address) { status = lb::Program::printBatteryInfo(tunables, address, helperPath); },
      [&] { status = lb::Program::runApplication(defaults, tunables, demo, helperPath); });
  return status;
}
