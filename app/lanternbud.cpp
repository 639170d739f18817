// lanternbud: the program, or with "-PrintBatteryInfo <address>" (also as
// LanternbudHelperTool) its battery print mode.
#include "app/Program.h"
#include "core/AppDelegate.h"
#include "foundation/JsonSettingsStore.h"
#include "linux/logging/LinuxLogger.h"

#include <QCoreApplication>

#include <algorithm>
#include <filesystem>
#include <iostream>

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

} // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (has(words, "--help") || has(words, "-h")) {
    std::cout << usage;
    return 0;
  }
  QCoreApplication qt(argc, argv);
  const bool demo = has(words, "--demo");
  const auto processName = std::filesystem::path(argv[0]).filename().string();
  const auto helperPath = QCoreApplication::applicationDirPath().toStdString() + "/LanternbudHelperTool";

  const auto settingsFile = lb::JsonSettingsStore::defaultFile();
  lb::JsonSettingsStore store(demo ? settingsFile.parent_path() / "demo-settings.json" : settingsFile);
  lb::UserDefaults defaults(store, lb::UserDefaults::argumentDomain(words));
  // Until the tray exists, its log lines and the start's are what a user sees.
  defaults.registerDefaults({{"LogLaunch", true}, {"LogTray", true}});
  lb::LinuxLogger::install([&defaults](const std::string& area) { return defaults.boolValue(area, false); },
                           processName);
  lb::Tunables tunables(defaults);

  int status = 0;
  lb::AppDelegate::processEntry(
      defaults, [&](const std::string& address) { lb::Program::printBatteryInfo(tunables, address, helperPath); },
      [&] { status = lb::Program::runApplication(defaults, tunables, demo, helperPath); });
  return status;
}
