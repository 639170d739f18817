// The whole lanternbud with 10 paired devices, on a private system bus with
// the BlueZ model, a private session bus and a private PulseAudio server:
// how long until the first device is registered, its resident memory after
// start, and while idle the D-Bus messages it sends and its requests to the
// sound server. Prints the figures; the targets are 0, 0 and under 15 MB.
//   program_idle_benchmark [seconds]   (default 60)
#include "tests/bench/ProgramServices.h"
#include "tests/support/RunningProgram.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusVariant>
#include <QElapsedTimer>

#include <cstdio>
#include <fstream>

using namespace lb;

namespace {

// The unique name of the process's connection to the bus.
QString connectionOf(QDBusConnection& bus, qint64 pid) {
  for (const auto& name : bus.interface()->registeredServiceNames().value()) {
    if (name.startsWith(':') && bus.interface()->servicePid(name).value() == pid) return name;
  }
  return {};
}

// A figure of /proc/<pid>/status in MB, such as "VmRSS" or "RssAnon".
double statusMegabytes(qint64 pid, const std::string& field) {
  std::ifstream status("/proc/" + std::to_string(pid) + "/status");
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
  test::ProgramServices services;
  if (!services.ready()) return 1;
  auto& [system, session, pulse] = services;
  std::string devices;
  for (int i = 0; i < 10; ++i) {
    auto address = QString("00:11:22:33:44:%1").arg(i, 2, 10, QChar('0'));
    system.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", address, QString("Device %1").arg(i)});
    system.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", address, 0x240404});
    devices += std::string(i ? "," : "") + R"({"deviceID": )" + std::to_string(i + 1) + R"(, "device": ")" +
               address.toStdString() + "\"}";
  }
  test::RunningProgram program(&system, session, pulse.server());
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

  const auto pid = program.process().processId();
  auto systemWatcher = system.connect("benchmark");
  const auto onSystemName = connectionOf(systemWatcher, pid), onSessionName = connectionOf(watcher, pid);
  if (onSystemName.isEmpty() || onSessionName.isEmpty()) {
    std::fprintf(stderr, "cannot run: lanternbud's connections are not on both buses\n");
    return 1;
  }
  test::PrivateBus::MessageCounter onSystem(system, onSystemName);
  test::PrivateBus::MessageCounter onSession(session, onSessionName);
  test::waitUntil([] { return false; }, 2);
  const double resident = statusMegabytes(pid, "VmRSS"), anonymous = statusMegabytes(pid, "RssAnon"),
               files = statusMegabytes(pid, "RssFile");
  const int systemBefore = onSystem.count(), sessionBefore = onSession.count();
  test::waitUntil([] { return false; }, seconds);
  const int systemSent = onSystem.count() - systemBefore, sessionSent = onSession.count() - sessionBefore;

  program.process().terminate();
  program.process().waitForFinished(10000);
  const auto log = program.logText();
  const long requests = loggedRequests(log, "sound-server requests in all") -
                        loggedRequests(log, "sound-server requests so far");

  std::printf("lanternbud with 10 paired devices:\n");
  std::printf("  start to first device registered: %lld ms\n", static_cast<long long>(firstDevice));
  std::printf("  resident memory after start: %.1f MB (target under 15 MB): %.1f MB of the program's own, "
              "%.1f MB of mapped files (mostly Qt, ICU and the C++ library, shared with other programs)\n",
              resident, anonymous, files);
  std::printf(
      "  idle for %.0f s: %d D-Bus messages from %s on the system bus, %d from %s on the session bus (target 0)\n",
      seconds, systemSent, qPrintable(onSystemName), sessionSent, qPrintable(onSessionName));
  std::printf("  idle for %.0f s and quitting: %ld requests to the sound server (target 0)\n", seconds, requests);
  return 0;
}
