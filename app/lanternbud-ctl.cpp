// lanternbud-ctl: lists and drives the running Lanternbud's devices over its
// scripting interface on the session bus, and reads and writes its settings.
#include "foundation/SettingsJson.h"
#include "foundation/JsonSettingsStore.h"
#include "scripting/BusNames.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QThread>

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <map>
#include <thread>

namespace {

// Exit statuses, as --help lists them.
enum Exit { ok = 0, failed = 1, usageError = 2, noSuchDevice = 3, notRunning = 4 };

constexpr const char* usage = R"(Usage: lanternbud-ctl <command> [arguments]

Commands:
  list [--json]                  the devices in the tray's order
  show <device>                  every property of one device
  connect <device> [--no-wait]   connect it; waits up to 45 s for the connection
  disconnect <device> [--no-wait]
  toggle <device> [--no-wait]    as a click on its tray item does
  battery <device>               its battery level text
  config get <Key>               a setting's value, as JSON
  config set <Key> <value>       JSON, YES/NO, or else text
  config unset <Key>             back to the default

<device> is a device's ID, name or Bluetooth address. `lanternbud-ctl
<command> --help` says more about one command. Settings and tunable keys
(core/Tunables.h in the sources, or README) go through the running program,
the only writer of the settings file; when it is not running, config writes
the file directly.

Exit status: 0 done, 1 failed (not connected in time, key not set),
2 usage error, 3 no such device, 4 Lanternbud is not running.
)";

const std::map<std::string, std::string> commandHelp = {
    {"list", "lanternbud-ctl list [--json]\n\nOne line per device: ID, name, address, state, battery. With --json an\n"
             "array of objects with every property of the scripting interface but the pictures, named\n"
             "in lower camel case (id, name, address, connected, batteryLevel, status, ...); a missing\n"
             "value is null.\n"},
    {"show", "lanternbud-ctl show <device>\n\nEvery property of the device, one per line.\n"},
    {"connect",
     "lanternbud-ctl connect <device> [--no-wait]\n\nConnects the device as a click does, and (unless --no-wait)\n"
     "waits up to 45 s until it is connected. Already connected: nothing happens.\n"},
    {"disconnect",
     "lanternbud-ctl disconnect <device> [--no-wait]\n\nDisconnects the device, and waits as connect does.\n"},
    {"toggle",
     "lanternbud-ctl toggle <device> [--no-wait]\n\nConnects a disconnected device and disconnects a connected one.\n"},
    {"battery", "lanternbud-ctl battery <device>\n\nPrints \"Battery Level: 85%\" or \"Battery Level: Unknown\".\n"},
    {"config",
     "lanternbud-ctl config get <Key>\nlanternbud-ctl config set <Key> <value>\nlanternbud-ctl config unset <Key>\n\n"
     "Values are JSON (2, 0.5, true, \"text\", [\"a\"]); YES and NO are Booleans and any other\n"
     "word is text. Most tunables are read once per start: restart Lanternbud after setting one.\n"},
};

int fail(Exit status, const std::string& message) {
  std::cerr << "lanternbud-ctl: " << message << "\n";
  return status;
}

class Client {
public:
  Client() : bus_(QDBusConnection::sessionBus()) {}

  bool running() { return bus_.isConnected() && bus_.interface()->isServiceRegistered(lb::bus::serviceName).value(); }

  QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                    const QVariantList& arguments = {}) {
    auto message = QDBusMessage::createMethodCall(lb::bus::serviceName, path, interface, method);
    message.setArguments(arguments);
    return bus_.call(message, QDBus::Block, 10000);
  }
  QDBusMessage application(const QString& method, const QVariantList& arguments = {}) {
    return call(lb::bus::applicationPath, lb::bus::applicationInterface, method, arguments);
  }

  QVariantMap properties(const QString& path) {
    auto reply = call(path, "org.freedesktop.DBus.Properties", "GetAll", {lb::bus::deviceInterface});
    return qdbus_cast<QVariantMap>(reply.arguments().value(0));
  }
  QVariant property(const QString& path, const char* name) { return properties(path).value(name); }

  QList<QDBusObjectPath> devices() {
    auto reply = call(lb::bus::applicationPath, "org.freedesktop.DBus.Properties", "Get",
                      {lb::bus::applicationInterface, "Devices"});
    auto value = reply.arguments().value(0).value<QDBusVariant>().variant();
    return qdbus_cast<QList<QDBusObjectPath>>(value);
  }

  QDBusMessage setConnected(const QString& path, bool connected) {
    return call(path, "org.freedesktop.DBus.Properties", "Set",
                {lb::bus::deviceInterface, "Connected", QVariant::fromValue(QDBusVariant(connected))});
  }

private:
  QDBusConnection bus_;
};

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

int list(Client& client, bool json) {
  auto all = nlohmann::json::array();
  for (const auto& path : client.devices()) all.push_back(asJson(client.properties(path.path())));
  if (json) {
    std::cout << all.dump(2) << "\n";
    return ok;
  }
  std::printf("%-4s %-24s %-18s %-13s %s\n", "ID", "NAME", "ADDRESS", "STATE", "BATTERY");
  for (const auto& device : all) {
    auto text = [&](const char* key) {
      return device[key].is_null() ? std::string("-") : device[key].get<std::string>();
    };
    const auto level = device["batteryLevel"];
    std::printf("%-4lld %-24s %-18s %-13s %s\n", device["id"].get<long long>(), text("name").c_str(),
                text("address").c_str(), device["connected"].get<bool>() ? "connected" : "disconnected",
                level.is_null() ? "-" : (std::to_string(level.get<int>()) + "%").c_str());
  }
  return ok;
}

// Finds the device's path, or says why not.
std::optional<QString> find(Client& client, const std::string& query, int& status) {
  auto reply = client.application("FindDevice", {QString::fromStdString(query)});
  if (reply.type() == QDBusMessage::ErrorMessage) {
    status = fail(noSuchDevice, reply.errorMessage().toStdString() + " `lanternbud-ctl list` shows the devices.");
    return std::nullopt;
  }
  return reply.arguments().value(0).value<QDBusObjectPath>().path();
}

int show(Client& client, const QString& path) {
  const auto device = client.properties(path);
  for (auto it = device.begin(); it != device.end(); ++it) {
    auto value = it.value();
    std::string text = value.typeId() == QMetaType::QByteArray
                           ? std::to_string(value.toByteArray().size()) + " bytes of PNG"
                           : value.toString().toStdString();
    if (value.typeId() == QMetaType::Bool) text = value.toBool() ? "true" : "false";
    std::cout << it.key().toStdString() << ": " << text << "\n";
  }
  return ok;
}

int changeConnection(Client& client, const QString& path, std::optional<bool> wanted, bool wait) {
  const auto name = client.property(path, "Name").toString().toStdString();
  const bool now = client.property(path, "Connected").toBool();
  const bool target = wanted.value_or(!now);
  if (now == target) {
    std::cout << name << " is already " << (now ? "connected" : "disconnected") << ".\n";
    return ok;
  }
  auto reply = client.setConnected(path, target);
  if (reply.type() == QDBusMessage::ErrorMessage) return fail(failed, reply.errorMessage().toStdString());
  std::cout << (target ? "Connecting " : "Disconnecting ") << name << (wait ? "..." : ".") << std::endl;
  if (!wait) return ok;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(45);
  while (std::chrono::steady_clock::now() < deadline) {
    if (client.property(path, "Connected").toBool() == target) {
      std::cout << name << " is " << (target ? "connected" : "disconnected") << ".\n";
      return ok;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  return fail(failed, name + " did not " + (target ? "connect" : "disconnect") +
                          " within 45 s; the journal says why (journalctl -t lanternbud).");
}

std::optional<lb::SettingsValue> parseValue(const std::string& text) {
  std::string error;
  if (auto value = lb::SettingsJson::parse(text, error)) return value;
  if (text == "YES") return lb::SettingsValue(true);
  if (text == "NO") return lb::SettingsValue(false);
  return lb::SettingsValue(text);
}

int config(Client& client, const std::vector<std::string>& words) {
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
    if (reply.type() == QDBusMessage::ErrorMessage) return fail(failed, reply.errorMessage().toStdString());
    if (action == "get") std::cout << reply.arguments().value(0).toString().toStdString() << "\n";
    return ok;
  }
  lb::JsonSettingsStore store(lb::JsonSettingsStore::defaultFile());
  if (action == "get") {
    auto value = store.value(key);
    if (!value) return fail(failed, "\"" + key + "\" is not set; its default applies.");
    std::cout << lb::SettingsJson::write(*value) << "\n";
  }
  if (action == "set") store.setValue(key, *parseValue(words[3]));
  if (action == "unset") store.removeValue(key);
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
  Client client;
  if (command == "config") return config(client, words);
  if (!client.running()) {
    return fail(notRunning, "Lanternbud is not running on this session bus; start it with `lanternbud` "
                            "(or `lanternbud --demo`).");
  }
  if (command == "list") {
    if (words.size() > 2 || (words.size() == 2 && words[1] != "--json"))
      return fail(usageError, "usage: list [--json]");
    return list(client, words.size() == 2);
  }
  std::vector<std::string> arguments(words.begin() + 1, words.end());
  const bool wait = std::erase(arguments, "--no-wait") == 0;
  if (arguments.size() != 1)
    return fail(usageError, "usage: " + commandHelp.at(command).substr(0, commandHelp.at(command).find('\n')));
  int status = ok;
  auto path = find(client, arguments[0], status);
  if (!path) return status;
  if (command == "show") return show(client, *path);
  if (command == "battery") {
    std::cout << client.property(*path, "BatteryLevelString").toString().toStdString() << "\n";
    return ok;
  }
  std::optional<bool> wanted;
  if (command == "connect") wanted = true;
  if (command == "disconnect") wanted = false;
  return changeConnection(client, *path, wanted, wait);
}

} // namespace

int main(int argc, char** argv) {
  QCoreApplication qt(argc, argv);
  return run(std::vector<std::string>(argv + 1, argv + argc));
}
