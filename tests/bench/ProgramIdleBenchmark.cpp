// The whole lanternbud with 10 paired devices, on a private system bus with
// the BlueZ model, a private session bus and a private PulseAudio server:
// how long until the first device is registered, its resident memory after
// start, and while idle the D-Bus messages it sends, its wakeups and its
// requests to the sound server. With --tray it runs on a virtual display
// with a tray (a StatusNotifierWatcher), each device an item, and times a
// click: from the host's Activate to the first spinner frame's NewIcon.
// Prints the figures; the targets are 0 messages, 0 requests, under 15 MB
// (30 MB with the tray) and under 50 ms from click to spinner.
//   program_idle_benchmark [seconds] [--tray]   (default 60)
#include "tests/bench/ProgramServices.h"
#include "tests/support/RunningProgram.h"
#include "tests/support/XServer.h"
#include "tests/support/XfcePanel.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <cstdio>
#include <fstream>

using namespace lb;

namespace {

// The unique names of the process's connections to the bus (a tray item
// has one of its own).
QStringList connectionsOf(QDBusConnection& bus, qint64 pid) {
  QStringList names;
  for (const auto& name : bus.interface()->registeredServiceNames().value()) {
    if (name.startsWith(':') && bus.interface()->servicePid(name).value() == pid) names << name;
  }
  return names;
}

// Times the process was switched to, all its threads together: a wakeup
// each, near enough.
long contextSwitches(qint64 pid) {
  long total = 0;
  for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task")) {
    std::ifstream status(task.path() / "status");
    for (std::string line; std::getline(status, line);) {
      if (line.find("ctxt_switches:") != std::string::npos) total += std::atol(line.c_str() + line.find(':') + 1);
    }
  }
  return total;
}

// A figure of /proc/<pid>/status (or smaps_rollup) in MB, such as "VmRSS",
// "RssAnon" or "Pss".
double statusMegabytes(qint64 pid, const std::string& field, const std::string& file = "status") {
  std::ifstream status("/proc/" + std::to_string(pid) + "/" + file);
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(field + ":", 0) == 0) return static_cast<double>(std::atol(line.c_str() + field.size() + 1)) / 1024;
  }
  return -1;
}

long loggedRequests(const std::string& log, const std::string& before) {
  auto end = log.rfind(before);
  if (end == std::string::npos) return -1;
  auto start = log.rfind(' ', end - 2);
  return std::atol(log.c_str() + start + 1);
}

} // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const double seconds = argc > 1 ? std::atof(argv[1]) : 60;
  const bool tray = argc > 2 && std::string(argv[2]) == "--tray";
  test::ProgramServices services;
  if (!services.ready()) return 1;
  auto& [system, session, pulse] = services;
  std::unique_ptr<test::XServer> display;
  std::unique_ptr<test::XfcePanel> panel; // the tray's host
  if (tray) {
    display = std::make_unique<test::XServer>();
    if (display->skipReason().empty()) panel = std::make_unique<test::XfcePanel>(*display, session);
    if (!panel || !panel->skipReason().empty()) {
      std::fprintf(stderr, "cannot run: %s\n", panel ? panel->skipReason().c_str() : display->skipReason().c_str());
      return 1;
    }
  }
  std::string devices;
  for (int i = 0; i < 10; ++i) {
    auto address = QString("00:11:22:33:44:%1").arg(i, 2, 10, QChar('0'));
    system.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", address, QString("Device %1").arg(i)});
    system.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", address, 0x240404});
    devices += std::string(i ? "," : "") + R"({"deviceID": )" + std::to_string(i + 1) + R"(, "device": ")" +
               address.toStdString() + "\"}";
  }
  test::RunningProgram program(&system, session, pulse.server());
  if (display) program.setVariable("DISPLAY", display->display());
  std::filesystem::create_directories(program.settingsFile().parent_path());
  test::writeFile(program.settingsFile(), R"({"devices": [)" + devices + "]}");

  QElapsedTimer clock;
  clock.start();
  if (!program.start()) {
    std::fprintf(stderr, "cannot run: lanternbud did not start\n");
    return 1;
  }
  auto watcher = session.connect("benchmark");
  test::waitUntil(
      [&] {
        auto get = QDBusMessage::createMethodCall("org.lanternbud.Lanternbud", "/org/lanternbud/Lanternbud",
                                                  "org.freedesktop.DBus.Properties", "Get");
        get << "org.lanternbud.Lanternbud"
            << "Devices";
        auto reply = watcher.call(get, QDBus::Block, 1000);
        auto paths = qdbus_cast<QList<QDBusObjectPath>>(reply.arguments().value(0).value<QDBusVariant>().variant());
        return !paths.isEmpty();
      },
      20);
  const auto firstDevice = clock.elapsed();
  if (tray) test::waitUntil([&] { return session.statusNotifierItems().size() == 10; }, 20);

  const auto pid = program.process().processId();
  auto systemWatcher = system.connect("benchmark");
  const auto onSystemNames = connectionsOf(systemWatcher, pid), onSessionNames = connectionsOf(watcher, pid);
  if (onSystemNames.isEmpty() || onSessionNames.isEmpty()) {
    std::fprintf(stderr, "cannot run: lanternbud's connections are not on both buses\n");
    return 1;
  }
  std::vector<std::unique_ptr<test::PrivateBus::MessageCounter>> onSystem, onSession;
  for (const auto& name : onSystemNames)
    onSystem.push_back(std::make_unique<test::PrivateBus::MessageCounter>(system, "sender='" + name + "'"));
  for (const auto& name : onSessionNames)
    onSession.push_back(std::make_unique<test::PrivateBus::MessageCounter>(session, "sender='" + name + "'"));
  auto sent = [](auto& counters) {
    int total = 0;
    for (auto& counter : counters) total += counter->count();
    return total;
  };
  test::waitUntil([] { return false; }, 2);
  const double resident = statusMegabytes(pid, "VmRSS"), anonymous = statusMegabytes(pid, "RssAnon"),
               files = statusMegabytes(pid, "RssFile"), proportional = statusMegabytes(pid, "Pss", "smaps_rollup");
  const int systemBefore = sent(onSystem), sessionBefore = sent(onSession);
  const long switchesBefore = contextSwitches(pid);
  test::waitUntil([] { return false; }, seconds);
  const long wakeups = contextSwitches(pid) - switchesBefore;
  const int systemSent = sent(onSystem) - systemBefore, sessionSent = sent(onSession) - sessionBefore;

  qint64 clickToSpinner = -1;
  if (tray) {
    const auto item = session.statusNotifierItems().value(0);
    QEventLoop framed;
    watcher.connect(item, "/StatusNotifierItem", "org.kde.StatusNotifierItem", "NewIcon", &framed, SLOT(quit()));
    QTimer::singleShot(5000, &framed, &QEventLoop::quit);
    QElapsedTimer click;
    click.start();
    watcher.asyncCall(
        QDBusMessage::createMethodCall(item, "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate")
        << 0 << 0);
    framed.exec();
    if (click.elapsed() < 5000) clickToSpinner = click.elapsed();
  }

  program.process().terminate();
  program.process().waitForFinished(10000);
  const auto log = program.logText();
  const long requests = loggedRequests(log, "sound-server requests in all") -
                        loggedRequests(log, "sound-server requests so far");

  std::printf("lanternbud with 10 paired devices%s:\n", tray ? ", each an item in a StatusNotifierItem tray" : "");
  std::printf("  start to first device registered: %lld ms\n", static_cast<long long>(firstDevice));
  std::printf("  resident memory after start: %.1f MB (target under %d MB): %.1f MB of the program's own, "
              "%.1f MB of mapped files (mostly Qt, ICU and the C++ library, shared with other programs)\n",
              resident, tray ? 30 : 15, anonymous, files);
  std::printf("  proportional memory (PSS, shared pages split among their users): %.1f MB\n", proportional);
  std::printf("  idle for %.0f s: %d D-Bus messages on the system bus, %d on the session bus from its %lld "
              "connections (target 0); %ld wakeups\n",
              seconds, systemSent, sessionSent, static_cast<long long>(onSessionNames.size()), wakeups);

  std::printf("  idle for %.0f s and quitting: %ld requests to the sound server (target 0)\n", seconds, requests);
  if (tray)
    std::printf("  Activate to the first spinner frame on the bus: %lld ms (target under 50 ms)\n", clickToSpinner);
  return 0;
}
