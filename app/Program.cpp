#include "app/Program.h"

#include "app/Platform.h"
#include "core/AppDelegate.h"
#include "core/LogAreas.h"
#include "core/LowEnergyBatteryInfo.h"
#include "core/Texts.h"
#include "linux/bluez/BluezBluetooth.h"
#include "linux/bluez/BluezLowEnergyCentral.h"
#include "linux/battery/LinuxBatterySources.h"
#include "linux/battery/PropertyList.h"
#include "linux/desktop/DesktopNotifications.h"
#include "linux/desktop/XembedTray.h"
#include "scripting/ScriptingService.h"
#include "linux/system/TerminationSignals.h"
#include "ui/TrayHost.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <stdexcept>

namespace lb {

int Program::printBatteryInfo(Tunables& tunables, const std::string& address, const std::string& helperPath) {
  auto system = QDBusConnection::systemBus();
  BluezBluetooth bluetooth(system);
  UPowerRegistry upower(system);
  LinuxBatterySources sources(upower, HelperTool(helperPath));
  QtEventLoop clock;
  BatteryInfo batteryInfo(sources, tunables, clock, clock.now());
  int status = 0;
  batteryInfo.mainPrintBatteryInfo(bluetooth, address, [&status](const SettingsValue::Dictionary& info) {
    const auto xml = PropertyList::xml(info);
    if (std::fwrite(xml.data(), 1, xml.size(), stdout) != xml.size() || std::fflush(stdout) != 0) {
      status = 1;
      throw std::runtime_error("cannot write to standard output");
    }
  });
  return status;
}

namespace {

// Another instance owns the name: ask it to show its preferences.
int reopenRunningInstance(QDBusConnection& session) {
  auto call = QDBusMessage::createMethodCall(bus::serviceName, bus::applicationPath, bus::applicationInterface,
                                             "ShowPreferences");
  auto reply = session.call(call, QDBus::Block, 5000);
  if (reply.type() == QDBusMessage::ErrorMessage) {
    std::cerr << "Lanternbud is already running but did not answer (" << reply.errorMessage().toStdString() << ").\n";
  } else {
    std::cerr << "Lanternbud is already running; it was asked to show its preferences.\n";
  }
  return 0;
}

bool hasDisplay() {
  return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr &&
         QGuiApplication::platformName() != "offscreen";
}

// The tray the desktop offers, said in the log; without one, said to the
// user in every way left.
TrayHost::Kind findTray(const QDBusConnection& session, Tunables& tunables, bool display) {
  const auto host = display ? TrayHost::find(session, tunables(tunable::TrayHostWaitInterval), XembedTray::isClaimed)
                            : TrayHost::Kind::none;
  PXR_LOG(launchLog(), "Tray:", TrayHost::describe(host));
  if (host != TrayHost::Kind::none) return host;
  const auto advice = TrayHost::missingAdvice(display);
  PXR_LOG_ERROR(std::string(advice));
  std::cerr << "lanternbud: " << advice << "\n";
  if (session.isConnected()) {
    DesktopNotifications(session).show({localized("Lanternbud has no tray icons"), localized(advice), {}, false}, 0,
                                       [](const Result<Notifications::Id>&) {});
  }
  return host;
}

} // namespace

int Program::runApplication(UserDefaults& defaults, Tunables& tunables, bool demo, const std::string& helperPath) {
  // Before anything can see this instance (its bus name): a SIGTERM from
  // then on waits in the pipe until the event loop runs, and quits it.
  AppDelegate* running = nullptr;
  TerminationSignals termination([&running](int signal) {
    PXR_LOG(launchLog(), "Quitting on signal", signal);
    if (running) running->quit();
  });
  auto session = QDBusConnection::sessionBus();
  if (!session.isConnected()) {
    PXR_LOG_ERROR("No session bus (" + session.lastError().message().toStdString() +
                  "): lanternbud-ctl cannot reach this instance, and a second one is not prevented.");
  } else if (!session.registerService(bus::serviceName)) {
    return reopenRunningInstance(session);
  }

  const bool display = hasDisplay();
  const Platform::Desktop desktop{display, findTray(session, tunables, display)};
  auto platform = demo ? Platform::demo(defaults, tunables, desktop)
                       : Platform::real(defaults, tunables, helperPath, desktop);
  PXR_LOG(launchLog(), platform->backend());
  if (auto shortcuts = platform->services().shortcuts.method()) {
    PXR_LOG(launchLog(), "Shortcuts:", *shortcuts);
  } else {
    PXR_LOG(launchLog(), "Shortcuts: none; this desktop offers programs no global shortcuts. Bind "
                         "`lanternbud-ctl toggle <ID>` to a key in the desktop's keyboard settings instead.");
  }
  if (auto* world = platform->demoWorld()) world->seed(defaults);
  AppDelegate app(platform->services());
  platform->windows().attach(app, platform->services(), platform->reporter());
  app.applicationDidFinishLaunching();
  // The diagnostic Low Energy reader, on the real platform only.
  std::unique_ptr<LowEnergyBatteryInfo> lowEnergy;
  if (!demo) {
    lowEnergy = std::make_unique<LowEnergyBatteryInfo>(
        defaults, tunables, [] { return std::make_unique<BluezLowEnergyCentral>(QDBusConnection::systemBus()); });
  }

  std::unique_ptr<ScriptingService> scripting;
  if (session.isConnected())
    scripting = std::make_unique<ScriptingService>(session, app, platform->services(), platform->reporter());
  running = &app;
  auto requests = [&platform] {
    auto count = platform->soundServerRequests();
    return count ? std::to_string(*count) : std::string("no");
  };
  PXR_LOG(launchLog(), "Started with", app.deviceSettingManager()->deviceSettingList().size(), "devices;", requests(),
          "sound-server requests so far");
  QCoreApplication::exec();
  PXR_LOG(launchLog(), "Quitting;", requests(), "sound-server requests in all");

  // Nothing outside may reach the devices while they are taken down.
  scripting.reset();
  lowEnergy.reset(); // stops discovery
  platform->windows().detach();
  if (session.isConnected()) session.unregisterService(bus::serviceName);
  app.applicationWillTerminate();
  platform->endScripts();
  platform->services().batteryHistories.saveAll();
  if (auto problem = platform->services().defaults.saveProblem()) {
    PXR_LOG_ERROR("The settings of this run are not saved (" + *problem +
                  "): changes since the last save are lost; goodbye.");
  } else {
    PXR_LOG(launchLog(), "Saved the device list; goodbye.");
  }
  // A worker blocked in a Bluetooth call (a device that does not answer) may
  // take a minute; a logout will not wait. Everything is saved: leave without
  // taking down what the worker still uses.
  if (!platform->waitForWorkers(Seconds(1))) {
    PXR_LOG(launchLog(), "A Bluetooth call is still under way; leaving without waiting for it.");
    std::fflush(nullptr);
    std::_Exit(0);
  }
  return 0;
}

} // namespace lb
