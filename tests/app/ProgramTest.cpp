#include "core/SettingKeys.h"
#include "linux/battery/PropertyList.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/PulseServer.h"
#include "tests/support/RequireService.h"
#include "tests/support/RunningProgram.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <set>

namespace lb {

namespace {

constexpr const char* headsetAddress = "00:1B:66:AA:BB:CC";
constexpr const char* keyboardAddress = "F0:99:B6:44:55:66";
constexpr const char* silentHeadsetAddress = "00:1B:66:00:00:02";

// The whole program on real services: BlueZ's model on a private system
// bus, a PulseAudio server with a built-in sink and the headset's sink, and
// a private session bus for the scripting interface.
class ProgramTest : public ::testing::Test {
protected:
  void SetUp() override {
    if (system.skipReason().empty()) system.startBluez();
    LB_REQUIRE_SERVICE(system.skipReason());
    LB_REQUIRE_SERVICE(session.skipReason());
    LB_REQUIRE_SERVICE(pulse.skipReason());
    system.bluez("/", "org.bluez.Mock", "AddAdapter", {"hci0", "my-computer"});
    for (auto [address, name, deviceClass] :
         {std::tuple{headsetAddress, "WH Headset", 0x240404}, std::tuple{keyboardAddress, "K380 Keyboard", 0x002540},
          std::tuple{silentHeadsetAddress, "Silent Headset", 0x240404}}) {
      system.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", address, name});
      system.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", address, deviceClass});
    }
    pulse.loadBluetoothSink("wh_headset", headsetAddress, "WH Headset");
    pulse.pactl("set-default-sink builtin"); // the server prefers the newest sink
    program = std::make_unique<test::RunningProgram>(&system, session, pulse.server());
    std::filesystem::create_directories(program->settingsFile().parent_path());
    test::writeFile(program->settingsFile(), std::string(R"({"devices": [
      {"deviceID": 1, "device": "00-1b-66-aa-bb-cc"},
      {"deviceID": 2, "device": ")") + keyboardAddress +
                                                 R"(", "runShellScriptAfterConnected": true},
      {"deviceID": 3, "device": ")" + silentHeadsetAddress +
                                                 R"("}]})");
  }

  // A call to the scripting interface: the message, and its reply.
  static QDBusMessage message(const QString& path, const QString& interface, const QString& method,
                              const QVariantList& arguments) {
    auto call = QDBusMessage::createMethodCall("org.lanternbud.Lanternbud", "/org/lanternbud/Lanternbud" + path,
                                               interface, method);
    call.setArguments(arguments);
    return call;
  }
  QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                    const QVariantList& arguments = {}) {
    return scripting.call(message(path, interface, method, arguments), QDBus::Block, 5000);
  }
  QVariant deviceProperty(int ID, const char* name) {
    return call(QString("/Device/%1").arg(ID), "org.freedesktop.DBus.Properties", "Get",
                {"org.lanternbud.Lanternbud.Device", name})
        .arguments()
        .value(0)
        .value<QDBusVariant>()
        .variant();
  }
  // Until the program has seen the headset become the output, a click sets
  // the output instead of disconnecting.
  bool seenAsOutput(int ID) {
    return test::waitUntil([&] { return deviceProperty(ID, "Status").toString().endsWith(" - Connected"); });
  }

  std::string defaultSink() {
    auto sink = pulse.pactl("get-default-sink");
    return sink.substr(0, sink.find('\n'));
  }

  test::PrivateBus system;
  test::PrivateBus session{test::PrivateBus::Kind::session};
  test::PulseServer pulse;
  QDBusConnection scripting = session.connect("script");
  std::unique_ptr<test::RunningProgram> program;
};

} // namespace

TEST_F(ProgramTest, ConnectingAHeadsetMakesItTheSoundOutput) {
  ASSERT_TRUE(program->start());
  EXPECT_EQ(defaultSink(), "builtin");
  // lanternbud-ctl waits for the change the program announces on the bus.
  auto result = program->ctl({"connect", headsetAddress});
  EXPECT_NE(result.output.find("WH Headset is connected."), std::string::npos) << result.output << result.errors;
  EXPECT_TRUE(system.bluezConnected(headsetAddress));
  EXPECT_TRUE(test::waitUntil([&] { return defaultSink() == "wh_headset"; }));

  // Once it is not the output, a toggle makes it so again.
  EXPECT_TRUE(seenAsOutput(1));
  pulse.pactl("set-default-sink builtin");
  EXPECT_TRUE(test::waitUntil([&] { return deviceProperty(1, "Status").toString().endsWith("(Not Sound Output)"); }));
  result = program->ctl({"toggle", "WH Headset"});
  EXPECT_NE(result.output.find("it is now the sound output"), std::string::npos) << result.output;
  EXPECT_TRUE(test::waitUntil([&] { return defaultSink() == "wh_headset"; }));
  EXPECT_TRUE(system.bluezConnected(headsetAddress));
}

// While the program runs, the device list changes only by adding and
// removing, which save at once; a removed device takes its scripts along.
// A name that would forge a log line or drive the terminal does neither.
TEST_F(ProgramTest, DevicesAreAddedAndRemovedWhileItRuns) {
  const QString forging = "Desk Speaker\n2026-11-24 09:41:07.250 [error] FORGED\x1b[2J";
  system.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", "A0:B1:C2:D3:E4:F5", forging});
  system.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", "A0:B1:C2:D3:E4:F5", 0x240414});
  ASSERT_TRUE(program->start());
  EXPECT_EQ(program->ctl({"add", "A0:B1:C2"}).status, 2);
  auto unknown = program->ctl({"add", "11:22:33:44:55:66"});
  EXPECT_EQ(unknown.status, 3);
  EXPECT_NE(unknown.errors.find("pair it first"), std::string::npos) << unknown.errors;
  EXPECT_EQ(program->ctl({"add", "00-1b-66-aa-bb-cc"}).status, 1);

  // A file in the settings folder's place: the device is added for this run,
  // the caller is told it is not saved, and the next save that works keeps it.
  const auto folder = program->settingsFile().parent_path();
  std::filesystem::rename(folder, folder.string() + ".away");
  test::writeFile(folder, "");
  auto added = program->ctl({"add", "a0:b1:c2:d3:e4:f5"});
  EXPECT_EQ(added.status, 1);
  EXPECT_NE(added.errors.find("Desk Speaker\\n2026-11-24 09:41:07.250 [error] FORGED\\u001b[2J added as device 4, but "
                              "not saved: "),
            std::string::npos)
      << added.errors;
  std::filesystem::remove(folder);
  std::filesystem::rename(folder.string() + ".away", folder);
  auto saved = [&] { return nlohmann::json::parse(std::ifstream(program->settingsFile()))["devices"].size(); };
  EXPECT_EQ(saved(), 3u);
  EXPECT_NE(program->ctl({"config", "set", "ConnectionUpdateTimerInterval", "2"}).output.find("starts again"),
            std::string::npos);
  EXPECT_EQ(saved(), 4u);
  test::writeFile(program->scriptsFolder() / "4.connected", "#!/bin/sh\n");

  auto refused = program->ctl({"config", "set", "devices", "[]"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.errors.find("lanternbud-ctl add"), std::string::npos) << refused.errors;

  const auto listed = program->ctl({"list"}).output + program->ctl({"list", "--json"}).output;
  EXPECT_EQ(listed.find('\x1b'), std::string::npos) << listed;
  EXPECT_EQ(program->logText().find("\n2026-11-24 09:41:07.250"), std::string::npos);
  EXPECT_EQ(program->ctl({"remove", "4"}).status, 0);
  EXPECT_EQ(saved(), 3u);
  EXPECT_FALSE(std::filesystem::exists(program->scriptsFolder() / "4.connected"));
  EXPECT_EQ(program->ctl({"show", "4"}).status, 3);
}

// As on a real system, the sink comes after the link, and the server keeps
// the default the user chose (builtin) when it does.
TEST_F(ProgramTest, AHeadsetWhoseSinkAppearsAfterTheLinkBecomesTheOutput) {
  ASSERT_TRUE(program->start({"-LogAudioOutput", "YES"}));
  EXPECT_EQ(program->ctl({"connect", "Silent Headset", "--no-wait"}).status, 0);
  ASSERT_TRUE(test::waitUntil([&] { return deviceProperty(3, "Connected").toBool(); }));
  pulse.loadBluetoothSink("silent_headset", silentHeadsetAddress, "Silent Headset");
  EXPECT_TRUE(test::waitUntil([&] { return defaultSink() == "silent_headset"; }));
  EXPECT_TRUE(seenAsOutput(3));
  const auto log = program->logText();
  EXPECT_NE(log.find("Setting sound output device because connection was manually initiated"), std::string::npos);
  EXPECT_EQ(log.find("Closing connection"), std::string::npos) << log;
}

TEST_F(ProgramTest, SigtermSaves) {
  ASSERT_TRUE(program->start());
  program->process().terminate(); // SIGTERM
  ASSERT_TRUE(program->process().waitForFinished(10000));
  EXPECT_EQ(program->process().exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(program->process().exitCode(), 0);
  // Saving writes each device's name beside its options.
  auto saved = nlohmann::json::parse(std::ifstream(program->settingsFile()));
  std::set<std::string> names;
  for (const auto& device : saved["devices"]) names.insert(device.value("deviceName", ""));
  EXPECT_EQ(names, (std::set<std::string>{"K380 Keyboard", "Silent Headset", "WH Headset"}));
  EXPECT_EQ(program->ctl({"list"}).status, 4); // not running
}

// A device that does not answer keeps a worker in BlueZ's Connect for a
// minute; quitting (a logout) must not wait for it, nor crash, and saves.
TEST_F(ProgramTest, QuittingWhileAConnectStallsIsQuickAndSaves) {
  ASSERT_TRUE(program->start());
  test::PrivateBus::MessageCounter connects(system, "type='method_call',member='Connect'");
  ASSERT_TRUE(connects.started());
  // Held only once the program has BlueZ's devices, or it would know no name.
  ASSERT_TRUE(test::waitUntil([&] { return deviceProperty(2, "Name").toString() == "K380 Keyboard"; }));
  system.pauseBluez(true); // the call waits as long as BlueZ is held
  EXPECT_EQ(program->ctl({"connect", "K380 Keyboard", "--no-wait"}).status, 0);
  ASSERT_TRUE(test::waitUntil([&] { return connects.count() == 1; })); // the worker is in the call
  std::filesystem::remove(program->settingsFile());
  ::kill(static_cast<pid_t>(program->process().processId()), SIGHUP);
  ASSERT_TRUE(program->process().waitForFinished(20000)); // well before BlueZ's call would time out
  EXPECT_EQ(program->process().exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(program->process().exitCode(), 0);
  EXPECT_EQ(nlohmann::json::parse(std::ifstream(program->settingsFile()))["devices"].size(), 3u);
}

TEST_F(ProgramTest, TheScriptingInterfaceSaysWhatWasWrong) {
  ASSERT_TRUE(program->start());
  auto missing = program->ctl({"show", "Nonesuch"});
  EXPECT_EQ(missing.status, 3);
  EXPECT_EQ(missing.errors, "lanternbud-ctl: No device has the ID, name or address \"Nonesuch\". `lanternbud-ctl list` "
                            "shows the devices.\n"); // and nothing of Qt's
  // One name a device; echoes of outside text are cut short.
  EXPECT_EQ(program->ctl({"show", "+1"}).status, 3);
  auto longName = program->ctl({"show", std::string(100'000, 'x').c_str()});
  EXPECT_NE(longName.errors.find(std::string(100, 'x') + "…\""), std::string::npos) << longName.errors;
  EXPECT_EQ(longName.errors.find(std::string(101, 'x')), std::string::npos) << longName.errors.substr(0, 400);
  EXPECT_EQ(deviceProperty(1, "ID").toLongLong(), 1);
  EXPECT_EQ(
      call("/Device/01", "org.freedesktop.DBus.Properties", "GetAll", {"org.lanternbud.Lanternbud.Device"}).errorName(),
      "org.freedesktop.DBus.Error.UnknownObject");
  EXPECT_EQ(program->ctl({"connect"}).status, 2);
  EXPECT_EQ(program->ctl({"frobnicate"}).status, 2);

  EXPECT_EQ(call("/Device/1", "org.lanternbud.Lanternbud.Device", "Connect", {"x"}).errorName(),
            "org.freedesktop.DBus.Error.InvalidArgs");
  // A key longer than any is refused at once: the next call is answered.
  auto refusing = scripting.asyncCall(
      message("", "org.lanternbud.Lanternbud", "SetSetting", {QString(2'000'000, 'k'), "1"}));
  EXPECT_EQ(call("", "org.lanternbud.Lanternbud", "GetSetting", {"LogConnect"}).errorName(),
            "org.lanternbud.Lanternbud.Error.NotSet");
  refusing.waitForFinished();
  EXPECT_EQ(refusing.error().name(), "org.lanternbud.Lanternbud.Error.UnknownKey");

  auto set = [&](const char* property, const QVariant& value) {
    return call("/Device/1", "org.freedesktop.DBus.Properties", "Set",
                {"org.lanternbud.Lanternbud.Device", property, QVariant::fromValue(QDBusVariant(value))});
  };
  EXPECT_EQ(set("Connected", "yes").errorMessage(), "Connected takes a Boolean (b), not a value of type s.");
  EXPECT_EQ(set("Name", "x").errorName(), "org.freedesktop.DBus.Error.PropertyReadOnly");

  auto introspect = [&](const QString& path) {
    return call(path, "org.freedesktop.DBus.Introspectable", "Introspect").arguments().value(0).toString();
  };
  EXPECT_TRUE(introspect("").contains("<node name=\"Device\"/>"));
  EXPECT_TRUE(introspect("/Device").contains("<node name=\"3\"/>"));
  EXPECT_TRUE(introspect("/Device/1").contains(R"(<property name="Connected" type="b" access="readwrite"/>)"));
  EXPECT_FALSE(system.bluezConnected(headsetAddress));

  // Settings go through the running program, which writes the file.
  EXPECT_EQ(program->ctl({"config", "set", "LogConnect", "YES"}).status, 0);
  EXPECT_EQ(program->ctl({"config", "get", "LogConnect"}).output, "true\n");
  EXPECT_NE(nlohmann::json::parse(std::ifstream(program->settingsFile()))["LogConnect"], nullptr);
  EXPECT_EQ(program->ctl({"config", "unset", "LogConnect"}).status, 0);
  const auto unset = program->ctl({"config", "get", "LogConnect"});
  EXPECT_EQ(unset.status, 1);
  EXPECT_EQ(unset.errors, "lanternbud-ctl: \"LogConnect\" is not set; its default applies.\n");
  // What the program would not use is refused, by it and, once it has
  // quit, by lanternbud-ctl itself.
  const std::vector<std::pair<QStringList, std::string>> refusals = {
      {{"LogConect", "YES"}, "did you mean LogConnect?"},
      {{"ConnectionUpdateTimerInterval", "0"}, "takes a number from 0.05 to 3600"},
      {{"LogConnect", "on"}, "LogConnect takes true or false, not \"on\"."},
      {{"MissingAudioDeviceTries", "2.5"}, "takes a whole number from 0 to 100, not 2.5."},
      {{"ConnectionWaitInterval", "\"2\""}, "takes a number from"}};
  auto refusedEither = [&] {
    for (const auto& [words, message] : refusals) {
      auto refused = program->ctl(QStringList{"config", "set"} + words);
      EXPECT_EQ(refused.status, 2) << words.join(' ').toStdString();
      EXPECT_NE(refused.errors.find(message), std::string::npos) << refused.errors;
    }
  };
  refusedEither();

  // Starting at login follows the choice at once.
  const auto entry = program->settingsFile().parent_path().parent_path() / "autostart" / "lanternbud.desktop";
  EXPECT_EQ(program->ctl({"config", "set", settingKey::launchAtLogin, "YES"}).status, 0);
  EXPECT_TRUE(test::waitUntil([&] { return std::filesystem::exists(entry); }));
  EXPECT_EQ(program->ctl({"config", "set", settingKey::launchAtLogin, "NO"}).status, 0);
  EXPECT_TRUE(test::waitUntil([&] { return !std::filesystem::exists(entry); }));

  program->process().terminate();
  ASSERT_TRUE(program->process().waitForFinished(10000));
  const auto before = test::readFile(program->settingsFile());
  refusedEither();
  EXPECT_EQ(test::readFile(program->settingsFile()), before);
}

// Bad settings files never stop a start, are never written over, and the
// log says what happened to them.
TEST_F(ProgramTest, BadSettingsAreKeptSaidAndNeverStopTheStart) {
  // A file that is no JSON at all is moved aside by the store (its own
  // tests); here a list that is no list of devices is kept aside; IDs that cannot name a
  // device get fresh ones; a stored print request is no command.
  const auto file = program->settingsFile();
  test::writeFile(file, std::string(R"({"devices": "garbage", "PrintBatteryInfo": ")") + headsetAddress + "\"}");
  ASSERT_TRUE(program->start());
  program->process().terminate();
  ASSERT_TRUE(program->process().waitForFinished(10000));
  auto saved = nlohmann::json::parse(std::ifstream(file));
  EXPECT_NE(saved.dump().find(R"("devices.unreadable-)"), std::string::npos) << saved.dump();

  test::writeFile(file, std::string(R"({"devices": [{"deviceID": -4, "device": ")") + headsetAddress +
                            R"("}, {"deviceID": 9223372036854775807, "device": ")" + keyboardAddress +
                            R"("}, {"deviceID": "1", "device": ")" + silentHeadsetAddress +
                            R"("}, {"device": "11:22:33:44:55:66"}]})");
  ASSERT_TRUE(program->start());
  auto list = program->ctl({"list", "--json"});
  EXPECT_EQ(list.status, 0) << list.errors;
  std::set<long long> IDs;
  for (const auto& device : nlohmann::json::parse(list.output)) IDs.insert(device["id"].get<long long>());
  EXPECT_EQ(IDs, (std::set<long long>{1, 2, 3, 4}));
  EXPECT_NE(program->ctl({"show", keyboardAddress}).output.find("Name: K380 Keyboard"), std::string::npos);
  EXPECT_NE(program->ctl({"connect", "4"}).errors.find("no Bluetooth device for device 4; is it still paired"),
            std::string::npos);
  program->process().terminate();
  ASSERT_TRUE(program->process().waitForFinished(10000));

  // The device list is no one-run value.
  EXPECT_EQ(program->run("lanternbud", {"-devices", "[]"}).status, 2);
  // A file that cannot be read is not written over, by the program or by ctl.
  std::filesystem::remove(file);
  std::filesystem::create_directory(file);
  auto refused = program->ctl({"config", "set", "LogConnect", "YES"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.errors.find("cannot be read"), std::string::npos) << refused.errors;
  EXPECT_TRUE(std::filesystem::is_directory(file));
}

// A mouse's battery, as BlueZ reports it, falls below the warning level:
// one notification names it.
TEST_F(ProgramTest, AMouseRunningLowRaisesOneNotification) {
  ASSERT_TRUE(session.startNotifications());
  const char* mouse = "F0:99:B6:77:88:99";
  const auto path = test::PrivateBus::bluezDevicePath(mouse);
  system.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", mouse, "MX Mouse"});
  system.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", mouse, 0x002580});
  system.bluez("/", "org.bluez.Mock", "AddBatteryService",
               {QVariant::fromValue(QDBusObjectPath(path)), QVariant::fromValue(uchar(25))});
  program->setVariable("XDG_CURRENT_DESKTOP", "XFCE"); // whose power daemon does not warn
  ASSERT_TRUE(program->start({"-DeviceInfoStalenessInterval", "1"}));
  ASSERT_EQ(program->ctl({"add", mouse}).status, 0);
  ASSERT_EQ(program->ctl({"connect", mouse}).status, 0);
  EXPECT_TRUE(test::waitUntil([&] { return program->ctl({"battery", "MX Mouse"}).output == "Battery Level: 25%\n"; }));

  system.bluez(path, "org.freedesktop.DBus.Mock", "UpdateProperties",
               {"org.bluez.Battery1", QVariantMap{{"Percentage", QVariant::fromValue(uchar(18))}}});
  // Headless, the program has told of its missing tray too.
  const auto aboutTheMouse = [&] {
    QStringList summaries;
    for (const auto& call : session.notificationCalls()) summaries << call.value(3).toString();
    return summaries.filter("MX Mouse");
  };
  EXPECT_TRUE(test::waitUntil([&] { return !aboutTheMouse().isEmpty(); }));
  EXPECT_EQ(aboutTheMouse(), QStringList{"MX Mouse: battery at 18 %"});

  // Both levels are in its history, oldest first, for people and scripts.
  const auto history = program->ctl({"battery", "MX Mouse", "--history"}).output;
  EXPECT_NE(history.find("battery  18%\n"), std::string::npos) << history;
  EXPECT_LT(history.find("battery  25%\n"), history.find("battery  18%\n")) << history;
  const auto json = nlohmann::json::parse(program->ctl({"battery", "MX Mouse", "--history", "--json"}).output, nullptr,
                                          false);
  ASSERT_TRUE(json.contains("readings")) << json;
  EXPECT_EQ(json["readings"].back()["side"], "battery");
  EXPECT_EQ(json["readings"].back()["level"], 18);
  EXPECT_EQ(program->ctl({"battery", "MX Mouse", "--json"}).status, 2); // --json goes with --history
}

// The helper tool is the program under another name, printing a device's
// battery levels from BlueZ or UPower as a property list.
TEST_F(ProgramTest, ThePrintModeAnswersFromBlueZAndUPower) {
  ASSERT_TRUE(system.startUPower());
  system.bluez(test::PrivateBus::bluezDevicePath(headsetAddress), "org.freedesktop.DBus.Mock", "AddProperty",
               {"org.bluez.Battery1", "Percentage", QVariant::fromValue(QDBusVariant(QVariant::fromValue(uchar(73))))});
  auto keyboard = system.upower("AddDischargingBattery", {"hid_keyboard", "K380", 64.0, qlonglong(0)})
                      .arguments()
                      .value(0)
                      .toString();
  system.upower("AddProperty",
                {"org.freedesktop.UPower.Device", "NativePath",
                 QVariant::fromValue(QDBusVariant("hid-f0:99:b6:44:55:66-battery"))},
                keyboard);

  auto headset = program->run("LanternbudHelperTool", {"-PrintBatteryInfo", headsetAddress});
  EXPECT_EQ(headset.status, 0);
  EXPECT_EQ(PropertyList::parse(headset.output),
            SettingsValue(SettingsValue::Dictionary{{"BatteryPercentSingle", 73}}));
  auto viaUPower = program->run("lanternbud", {"-PrintBatteryInfo", keyboardAddress});
  EXPECT_EQ(PropertyList::parse(viaUPower.output),
            SettingsValue(SettingsValue::Dictionary{{"BatteryPercentSingle", 64}}));

  auto unknown = program->run("lanternbud", {"-PrintBatteryInfo", "00:00:00:00:00:01"});
  EXPECT_EQ(unknown.status, 0);
  EXPECT_EQ(unknown.output, "");
  EXPECT_TRUE(std::filesystem::exists(program->stateFolder() / "LanternbudHelperTool App Log.log"));
  EXPECT_FALSE(std::filesystem::exists(program->settingsFile().parent_path().parent_path() / "autostart"));
}

// The demo's devices, in the language of the locale: its variables are
// enough, as Qt reads the language from LANG even where glibc has no such
// locale generated.
TEST(Demo, StartsWithItsDevicesAndSpeaksTheLanguageOfTheLocale) {
  test::PrivateBus session(test::PrivateBus::Kind::session);
  LB_REQUIRE_SERVICE(session.skipReason());
  test::RunningProgram program(nullptr, session, "");
  program.setVariable("LANG", "de_DE.UTF-8");
  ASSERT_TRUE(program.start({"--demo"}));
  auto list = [&] { return nlohmann::json::parse(program.ctl({"list", "--json"}).output); };
  const auto devices = list();
  ASSERT_EQ(devices.size(), 5u);
  EXPECT_EQ(devices[0]["name"], "Lantern Buds");
  EXPECT_EQ(devices[0]["address"], "00:1D:43:A0:00:02");
  EXPECT_EQ(devices[0]["iconName"], "surface-earbuds");
  EXPECT_TRUE(std::ranges::any_of(devices, [](const auto& d) { return d["status"] == "Lantern Headset - Getrennt"; }));
  EXPECT_EQ(program.ctl({"battery", "Lantern Headset"}).output, "Akkustand: Unbekannt\n");

  // The buds' sound output comes a moment after the link, and becomes the output.
  ASSERT_EQ(program.ctl({"connect", "Lantern Buds"}).status, 0);
  EXPECT_TRUE(test::waitUntil([&] { return list()[0]["status"] == "Lantern Buds - Verbunden"; })) << list()[0];
  EXPECT_EQ(program.ctl({"battery", "Lantern Buds"}).output.rfind("Akkustand: L: ", 0), 0u); // running down
  EXPECT_TRUE(test::waitUntil([&] { return list()[0]["soundOutput"] == true; }));
  EXPECT_NE(program.ctl({"list"}).output.find("Lantern Buds             00:1D:43:A0:00:02  connected     sound"),
            std::string::npos);
}

} // namespace lb
