// lanternbud-ctl: lists and drives the running Lanternbud's devices over its
// scripting interface on the session bus, and reads and writes its settings.
#include "app/ctl/ProgramClient.h"
#include "core/SettingKeys.h"
#include "foundation/JsonSettingsStore.h"
#include "foundation/Printing.h"
#include "foundation/SettingsJson.h"
#include "linux/report/LinuxDiagnosticReporter.h"
#include "scripting/BusNames.h"

#include <QCoreApplication>
#include <QDateTime>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <map>

namespace {

using lb::ProgramClient;

// Exit statuses, as --help lists them.
enum Exit { ok = 0, failed = 1, usageError = 2, noSuchDevice = 3, notRunning = 4 };

constexpr const char* usage = R"(Usage: lanternbud-ctl <command> [arguments]

Commands:
  list [--json]                  the devices in the tray's order
  show <device>                  every property of one device
  connect <device> [--no-wait]   connect it; waits until it is connected
  disconnect <device> [--no-wait]
  toggle <device> [--no-wait]    as a click on its tray item does
  battery <device> [--history [--json]]  its battery level text, or history
  add <address>                  add a paired device to the tray
  remove <device>                take a device out of the tray
  config get <Key>               a setting's value, as JSON
  config set <Key> <value>       JSON, YES/NO, or else text
  config unset <Key>             back to the default
  report <FILE> [--no-mask]      save a diagnostic report to FILE (.tar.gz)

<device> is a device's ID, name or Bluetooth address. `lanternbud-ctl
<command> --help` says more about one command. Settings and tunable keys
(core/Tunables.h in the sources, or README) go through the running program,
the only writer of the settings file; when it is not running, config writes
the file directly.

Exit status: 0 done, 1 failed (not connected in time, key not set, device
already added, a change not saved), 2 usage error, malformed address,
unknown key or a value the key does not take, 3 no such device,
4 Lanternbud is not running and the session bus could not start it.
)";

const std::map<std::string, std::string> commandHelp = {
    {"list", "lanternbud-ctl list [--json]\n\nOne line per device: ID, name, address, state, battery. With --json an\n"
             "array of objects with every property of the scripting interface but the pictures, named\n"
             "in lower camel case (id, name, address, connected, batteryLevel, status, ...); a missing\n"
             "value is null.\n"},
    {"show", "lanternbud-ctl show <device>\n\nEvery property of the device, one per line.\n"},
    {"connect",
     "lanternbud-ctl connect <device> [--no-wait]\n\nConnects the device as a click does (a headset becomes the sound\n"
     "output), and (unless --no-wait) waits until it is connected, at most 75 s, longer than Lanternbud's\n"
     "own attempt and retry. Already connected: nothing happens.\n"},
    {"disconnect",
     "lanternbud-ctl disconnect <device> [--no-wait]\n\nDisconnects the device, and waits as connect does.\n"},
    {"toggle", "lanternbud-ctl toggle <device> [--no-wait]\n\nAs a click: connects a disconnected device and "
               "disconnects a connected one,\nbut makes a connected headset that is not the sound output the "
               "output instead.\n"},
    {"add", "lanternbud-ctl add <address>\n\nAdds the paired device with this Bluetooth address (bluetoothctl "
            "devices Paired\nlists them) and prints its ID. Exit status 2: not an address; 3: the system knows no "
            "such\ndevice; 1: added already, or added but not saved (the settings cannot be written).\n"},
    {"remove", "lanternbud-ctl remove <device>\n\nTakes the device out of the tray, with its scripts and "
               "shortcut.\n"},
    {"battery",
     "lanternbud-ctl battery <device> [--history [--json]]\n\nPrints \"Battery Level: 85%\" or \"Battery Level: "
     "Unknown\".\nWith --history, every change of a level read while the device was connected, kept\n"
     "for 60 days (thinned as it ages), one per line: local time, side, level. With --json\nan object: "
     "{\"lastRead\": time, \"readings\": [{\"time\": time, \"side\": \"left\", \"level\": 55}, ...]}, "
     "times\nin ISO 8601, UTC; the side is \"battery\", or \"left\" and \"right\" for earbuds.\n"},
    {"report",
     "lanternbud-ctl report <FILE> [--no-mask]\n\nSaves a diagnostic report to FILE: one .tar.gz with Lanternbud's log "
     "files, the\njournal's last hours, and what BlueZ and the sound server say of their devices.\nThe running "
     "program writes it when there is one; otherwise lanternbud-ctl does, never\nstarting the program. Bluetooth "
     "addresses keep only their first half (00:1B:66:XX:XX:XX),\nunless --no-mask is given. Nothing is left behind "
     "when it fails or is interrupted.\n"},
    {"config",
     "lanternbud-ctl config get <Key>\nlanternbud-ctl config set <Key> <value>\nlanternbud-ctl config unset <Key>\n\n"
     "Values are JSON (2, 0.5, true, \"text\", [\"a\"]); YES and NO are Booleans and any other\n"
     "word is text. A tunable that the running program has read already takes effect at its\n"
     "next start; set says so. While it runs, devices are added and removed with add and remove.\n"
     "Exit status 2: an unknown key, or a value of the wrong type or out of range (the message\n"
     "names what the key takes); 1: the change could not be saved.\n"},
};

// What the program says quotes names from outside (a device may call itself
// anything): no control character reaches the terminal.
int fail(Exit status, const std::string& message) {
  std::cerr << "lanternbud-ctl: " << lb::pxrPrintable(message) << "\n";
  return status;
}

// Every property but the pictures, named in lower camel case ("ID" is
// "id"). A missing value, which the interface gives as the type's empty
// value ("" or -1), is null.
nlohmann::json asJson(const QVariantMap& device) {
  auto json = nlohmann::json::object();
  for (auto it = device.begin(); it != device.end(); ++it) {
    const auto& value = it.value();
    auto key = it.key() == "ID" ? std::string("id") : it.key().toStdString();
    key[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(key[0])));
    switch (value.typeId()) {
    case QMetaType::Bool: json[key] = value.toBool(); break;
    case QMetaType::Int:
    case QMetaType::LongLong:
      json[key] = value.toLongLong() == -1 ? nlohmann::json() : nlohmann::json(value.toLongLong());
      break;
    case QMetaType::QString:
      json[key] = value.toString().isEmpty() ? nlohmann::json() : nlohmann::json(value.toString().toStdString());
      break;
    default: break; // pictures
    }
  }
  return json;
}

int list(ProgramClient& client, bool json) {
  auto all = nlohmann::json::array();
  for (const auto& path : client.devices()) all.push_back(asJson(client.properties(path.path())));
  if (json) {
    std::cout << lb::pxrPrintableLines(all.dump(2)) << "\n";
    return ok;
  }
  std::printf("%-4s %-24s %-18s %-13s %-7s %s\n", "ID", "NAME", "ADDRESS", "STATE", "OUTPUT", "BATTERY");
  for (const auto& device : all) {
    auto text = [&](const char* key) {
      return device[key].is_null() ? std::string("-") : lb::pxrPrintable(device[key].get<std::string>());
    };
    const auto level = device["batteryLevel"];
    std::printf("%-4lld %-24s %-18s %-13s %-7s %s\n", device["id"].get<long long>(), text("name").c_str(),
                text("address").c_str(), device["connected"].get<bool>() ? "connected" : "disconnected",
                device["soundOutput"].get<bool>() ? "sound" : "-",
                level.is_null() ? "-" : (std::to_string(level.get<int>()) + "%").c_str());
  }
  return ok;
}

// Finds the device's path, or says why not.
std::optional<QString> find(ProgramClient& client, const std::string& query, int& status) {
  auto reply = client.application("FindDevice", {QString::fromStdString(query)});
  if (reply.type() == QDBusMessage::ErrorMessage) {
    status = fail(noSuchDevice, reply.errorMessage().toStdString() + " `lanternbud-ctl list` shows the devices.");
    return std::nullopt;
  }
  return reply.arguments().value(0).value<QDBusObjectPath>().path();
}

int show(ProgramClient& client, const QString& path) {
  const auto device = client.properties(path);
  for (auto it = device.begin(); it != device.end(); ++it) {
    auto value = it.value();
    std::string text = value.typeId() == QMetaType::QByteArray
                           ? std::to_string(value.toByteArray().size()) + " bytes of PNG"
                           : lb::pxrPrintable(value.toString().toStdString());
    if (value.typeId() == QMetaType::Bool) text = value.toBool() ? "true" : "false";
    std::cout << it.key().toStdString() << ": " << text << "\n";
  }
  return ok;
}

// Asks the device to connect, disconnect or toggle, then (with `wait`)
// waits for the change that the program announces.
int request(ProgramClient& client, const QString& path, const std::string& command, bool wait) {
  // A device the system does not know has no name: its ID stands in.
  auto name = lb::pxrPrintable(client.property(path, "Name").toString().toStdString());
  if (name.empty()) name = "device " + std::to_string(client.property(path, "ID").toLongLong());
  client.watch(path);
  const QString method = command == "connect" ? "Connect" : command == "disconnect" ? "Disconnect" : "Toggle";
  auto reply = client.device(path, method);
  if (reply.type() == QDBusMessage::ErrorMessage) return fail(failed, reply.errorMessage().toStdString());
  const auto outcome = reply.arguments().value(0).toString();
  if (outcome == "unchanged") { // only a connect or a disconnect finds nothing to do
    std::cout << name << " is already " << (command == "connect" ? "connected" : "disconnected") << ".\n";
    return ok;
  }
  if (outcome == "settingOutput") {
    std::cout << name << " is connected; it is now the sound output (toggle again to disconnect).\n";
    return ok;
  }
  if (outcome == "busy") {
    return fail(failed, name + " is being connected or disconnected already; try again when that is done.");
  }
  if (outcome == "connectionOnly") {
    return fail(failed, name + " is set to connection-only: Lanternbud does not disconnect it.");
  }
  if (outcome == "noDevice") {
    return fail(failed, "the system has no Bluetooth device for " + name +
                            "; is it still paired (bluetoothctl devices Paired)?");
  }
  const bool target = outcome == "connecting";
  std::cout << (target ? "Connecting " : "Disconnecting ") << name << (wait ? "..." : ".") << std::endl;
  if (!wait) return ok;
  if (client.waitUntilConnected(target, std::chrono::seconds(75))) {
    std::cout << name << " is " << (target ? "connected" : "disconnected") << ".\n";
    return ok;
  }
  return fail(failed, name + " did not " + (target ? "connect" : "disconnect") +
                          " within 75 s; the journal says why (journalctl -t lanternbud).");
}

// The levels the program kept of the device, oldest first.
int history(ProgramClient& client, const QString& path, bool json) {
  auto reply = client.application("BatteryHistory", {QVariant::fromValue(QDBusObjectPath(path))});
  if (reply.type() == QDBusMessage::ErrorMessage) return fail(failed, reply.errorMessage().toStdString());
  const auto kept = nlohmann::json::parse(reply.arguments().value(0).toString().toStdString(), nullptr, false);
  if (!kept.is_object()) return fail(failed, "Lanternbud's answer is not a history.");
  const auto utc = [](std::int64_t seconds) {
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC).toString(Qt::ISODate).toStdString();
  };
  auto readings = nlohmann::ordered_json::array();
  const auto sides = kept.value("sides", nlohmann::json::object());
  for (const auto& [side, levels] : sides.items()) {
    for (const auto& reading : levels) {
      readings.push_back({{"time", reading.at(0).get<std::int64_t>()}, {"side", side}, {"level", reading.at(1)}});
    }
  }
  std::stable_sort(readings.begin(), readings.end(),
                   [](const auto& a, const auto& b) { return a["time"] < b["time"]; });
  if (json) {
    for (auto& reading : readings) reading["time"] = utc(reading["time"].get<std::int64_t>());
    const auto lastRead = kept.value("lastRead", nlohmann::json());
    nlohmann::json answer{
        {"lastRead", lastRead.is_number() ? nlohmann::json(utc(lastRead.get<std::int64_t>())) : lastRead},
        {"readings", readings}};
    std::cout << answer.dump(2) << "\n";
    return ok;
  }
  if (readings.empty()) {
    const auto name = lb::pxrPrintable(client.property(path, "Name").toString().toStdString());
    std::cout << "No battery levels are kept of " << name << " yet: they are read while it is connected.\n";
  }
  for (const auto& reading : readings) {
    const auto time =
        QDateTime::fromSecsSinceEpoch(reading["time"].get<std::int64_t>()).toString("yyyy-MM-dd HH:mm:ss");
    std::printf("%s  %-7s %3d%%\n", time.toStdString().c_str(), reading["side"].get<std::string>().c_str(),
                reading["level"].get<int>());
  }
  return ok;
}

int add(ProgramClient& client, const std::string& address) {
  auto reply = client.application("AddDevice", {QString::fromStdString(address)});
  if (reply.type() == QDBusMessage::ErrorMessage) {
    const auto error = reply.errorName().toStdString();
    const auto kind = error.substr(error.rfind('.') + 1);
    const Exit status = kind == "InvalidAddress" ? usageError : kind == "UnknownDevice" ? noSuchDevice : failed;
    return fail(status, reply.errorMessage().toStdString());
  }
  const auto path = reply.arguments().value(0).value<QDBusObjectPath>().path();
  const auto device = client.properties(path);
  std::cout << "Added " << lb::pxrPrintable(device.value("Name").toString().toStdString()) << " as device "
            << device.value("ID").toLongLong() << ".\n";
  return ok;
}

int remove(ProgramClient& client, const QString& path) {
  const auto name = lb::pxrPrintable(client.property(path, "Name").toString().toStdString());
  auto reply = client.application("RemoveDevice", {QVariant::fromValue(QDBusObjectPath(path))});
  if (reply.type() == QDBusMessage::ErrorMessage) return fail(failed, reply.errorMessage().toStdString());
  std::cout << "Removed " << name << ".\n";
  return ok;
}

std::optional<lb::SettingsValue> parseValue(const std::string& text) {
  std::string error;
  if (auto value = lb::SettingsJson::parse(text, error)) return value;
  if (text == "YES") return lb::SettingsValue(true);
  if (text == "NO") return lb::SettingsValue(false);
  return lb::SettingsValue(text);
}

int config(ProgramClient& client, const std::vector<std::string>& words) {
  const auto& action = words.size() > 1 ? words[1] : "";
  const bool wellFormed = (action == "get" && words.size() == 3) || (action == "set" && words.size() == 4) ||
                          (action == "unset" && words.size() == 3);
  if (!wellFormed) return fail(usageError, "usage: config get|unset <Key>, config set <Key> <value>");
  const auto& key = words[2];
  if (client.running()) {
    QDBusMessage reply;
    if (action == "get") reply = client.application("GetSetting", {QString::fromStdString(key)});
    if (action == "set") {
      reply = client.application(
          "SetSetting",
          {QString::fromStdString(key), QString::fromStdString(lb::SettingsJson::write(*parseValue(words[3])))});
    }
    if (action == "unset") reply = client.application("UnsetSetting", {QString::fromStdString(key)});
    if (reply.type() == QDBusMessage::ErrorMessage) {
      const auto error = reply.errorName().toStdString();
      const auto kind = error.substr(error.rfind('.') + 1);
      const bool refused = kind == "InvalidValue" || kind == "UnknownKey";
      return fail(refused ? usageError : failed, reply.errorMessage().toStdString());
    }
    const auto answer = reply.arguments().value(0).toString().toStdString();
    if (action == "get") std::cout << lb::pxrPrintableLines(answer) << "\n";
    if (answer == "nextStart") {
      std::cout << key << " is read once per run: the change takes effect when Lanternbud starts again.\n";
    }
    return ok;
  }
  // The running program's checks, so that what is written here is used.
  const auto value = action == "set" ? parseValue(words[3]) : std::nullopt;
  if (auto unknown = value ? lb::SettingKeys::whyUnknown(key) : lb::SettingKeys::tooLong(key)) {
    return fail(usageError, *unknown);
  }
  if (auto problem = value ? lb::SettingKeys::problem(key, *value) : std::nullopt) return fail(usageError, *problem);
  using Access = lb::JsonSettingsStore::Access;
  lb::JsonSettingsStore store(lb::JsonSettingsStore::defaultFile(),
                              action == "get" ? Access::readOnly : Access::readWrite);
  if (action != "get" && !store.canSave()) {
    return fail(failed, store.file().string() + " cannot be read, so it is not written over; make it readable first.");
  }
  if (action == "get") {
    auto stored = store.value(key);
    if (!stored) return fail(failed, "\"" + key + "\" is not set; its default applies.");
    std::cout << lb::pxrPrintableLines(lb::SettingsJson::write(*stored)); // ends in a line feed
  }
  if (value) store.setValue(key, *value);
  if (action == "unset") store.removeValue(key);
  if (auto problem = store.saveProblem())
    return fail(failed, key + " " + action + ", but not saved: " + *problem + ".");
  return ok;
}

// Set by SIGINT and SIGTERM while a report is written here, which then
// removes what it began.
std::atomic<bool> reportCancelled{false};

int report(ProgramClient& client, std::vector<std::string> arguments) {
  const bool mask = std::erase(arguments, "--no-mask") == 0;
  if (arguments.size() != 2) return fail(usageError, "usage: report <FILE> [--no-mask]");
  std::error_code error;
  const auto file = std::filesystem::absolute(arguments[1], error);
  if (error || arguments[1].empty()) return fail(usageError, "\"" + arguments[1] + "\" is not a file name.");
  if (client.running()) {
    std::cerr << "Lanternbud is writing the report..." << std::endl;
    // The journal of a busy machine takes a while to read.
    const auto reply = client.application("SaveDiagnosticReport", {QString::fromStdString(file.string()), mask},
                                          std::chrono::minutes(10));
    if (reply.type() == QDBusMessage::ErrorMessage)
      return fail(failed, "the report could not be saved: " + reply.errorMessage().toStdString());
  } else {
    std::signal(SIGINT, [](int) { reportCancelled = true; });
    std::signal(SIGTERM, [](int) { reportCancelled = true; });
    lb::LinuxDiagnosticReporter reporter(lb::LinuxDiagnosticReporter::Sources::thisMachine());
    const auto result = reporter.saveReport(
        file, mask,
        [](int done, int total, const std::string& what) {
          if (done < total) std::cerr << "[" << done + 1 << "/" << total << "] " << what << "..." << std::endl;
        },
        reportCancelled);
    if (reportCancelled) return fail(failed, "interrupted; no report was saved.");
    if (!result) return fail(failed, "the report could not be saved: " + result.failure().reason);
  }
  std::cout << "Saved the diagnostic report to " << file.string() << "\n";
  return ok;
}

int run(const std::vector<std::string>& words) {
  if (words.empty() || words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
    std::cout << usage;
    return words.empty() ? usageError : ok;
  }
  const auto& command = words[0];
  const bool known = commandHelp.contains(command);
  if (!known) return fail(usageError, "no command \"" + command + "\"; lanternbud-ctl --help lists them.");
  if (std::find(words.begin(), words.end(), "--help") != words.end()) {
    std::cout << commandHelp.at(command);
    return ok;
  }
  // config and report work without the program, so they never have the bus
  // start one.
  const bool standalone = command == "config" || command == "report";
  ProgramClient client(standalone ? ProgramClient::Start::never : ProgramClient::Start::onDemand);
  if (command == "config") return config(client, words);
  if (command == "report") return report(client, words);
  if (auto why = client.reach()) {
    return fail(notRunning, "Lanternbud is not running on this session bus and could not be started: " + *why +
                                "; start it with `lanternbud` (or `lanternbud --demo`).");
  }
  if (command == "list") {
    if (words.size() > 2 || (words.size() == 2 && words[1] != "--json"))
      return fail(usageError, "usage: list [--json]");
    return list(client, words.size() == 2);
  }
  std::vector<std::string> arguments(words.begin() + 1, words.end());
  const bool wait = std::erase(arguments, "--no-wait") == 0;
  const bool withHistory = command == "battery" && std::erase(arguments, "--history") > 0;
  const bool json = withHistory && std::erase(arguments, "--json") > 0;
  if (arguments.size() != 1)
    return fail(usageError, "usage: " + commandHelp.at(command).substr(0, commandHelp.at(command).find('\n')));
  if (command == "add") return add(client, arguments[0]);
  int status = ok;
  auto path = find(client, arguments[0], status);
  if (!path) return status;
  if (command == "show") return show(client, *path);
  if (withHistory) return history(client, *path, json);
  if (command == "battery") {
    std::cout << lb::pxrPrintable(client.property(*path, "BatteryLevelString").toString().toStdString()) << "\n";
    return ok;
  }
  if (command == "remove") return remove(client, *path);
  return request(client, *path, command, wait);
}

} // namespace

int main(int argc, char** argv) {
  // The output is the command's own, for people and scripts to read: Qt's
  // notes to developers stay out of it, but for the last one before Qt
  // gives up.
  qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtFatalMsg) std::cerr << "lanternbud-ctl: " << text.toStdString() << "\n";
  });
  QCoreApplication qt(argc, argv);
  return run(std::vector<std::string>(argv + 1, argv + argc));
}
