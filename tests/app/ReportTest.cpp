#include "tests/support/PrivateBus.h"
#include "tests/support/PulseServer.h"
#include "tests/support/RequireService.h"
#include "tests/support/RunningProgram.h"

#include <QDBusConnectionInterface>
#include <QProcess>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace lb {

namespace {

constexpr const char* headsetAddress = "00:1B:66:AA:BB:CC";
constexpr const char* keyboardAddress = "F0:99:B6:44:55:66";

// The report's files by name, unpacked by tar as a user would.
std::map<std::string, std::string> unpacked(const std::filesystem::path& archive) {
  test::TemporaryDirectory into;
  QProcess tar;
  tar.start("tar", {"-xzf", QString::fromStdString(archive.string()), "-C", QString::fromStdString(into.path())});
  if (!tar.waitForFinished(30'000) || tar.exitCode() != 0) return {};
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(into.path())) {
    if (entry.is_regular_file())
      files[std::filesystem::relative(entry.path(), into.path()).string()] = test::readFile(entry.path());
  }
  return files;
}

} // namespace

// From the terminal, with and without the program: BlueZ's model with a
// paired headset and keyboard, PulseAudio with the headset's sink.
TEST(Report, SaysWhatBluetoothAndSoundWereDoingWithAddressesMasked) {
  test::PrivateBus system;
  test::PrivateBus session{test::PrivateBus::Kind::session};
  test::PulseServer pulse;
  if (system.skipReason().empty()) system.startBluez();
  LB_REQUIRE_SERVICE(system.skipReason());
  LB_REQUIRE_SERVICE(session.skipReason());
  LB_REQUIRE_SERVICE(pulse.skipReason());
  system.bluez("/", "org.bluez.Mock", "AddAdapter", {"hci0", "my-computer"});
  for (auto [address, name] : {std::pair{headsetAddress, "WH Headset"}, std::pair{keyboardAddress, "K380 Keyboard"}}) {
    system.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", address, name});
    system.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", address, 0x240404});
  }
  pulse.loadBluetoothSink("wh_headset", headsetAddress, "WH Headset");
  test::RunningProgram program(&system, session, pulse.server());
  test::TemporaryDirectory out;
  auto owned = [&] { return session.connect("watcher").interface()->isServiceRegistered("org.lanternbud.Lanternbud"); };

  // Not running: lanternbud-ctl writes it, and starts no program.
  auto direct = program.ctl({"report", QString::fromStdString(out / "direct.tar.gz"), "--no-mask"});
  EXPECT_EQ(direct.status, 0) << direct.errors;
  EXPECT_NE(direct.errors.find("[5/5] Writing the report"), std::string::npos) << direct.errors;
  EXPECT_FALSE(owned());
  auto files = unpacked(out / "direct.tar.gz");
  EXPECT_NE(files["direct/Bluetooth.txt"].find(std::string("Address: ") + headsetAddress), std::string::npos);

  // Running: the program writes it; a helper that never ran has no log.
  ASSERT_TRUE(program.start());
  // A device's battery history, named by its address.
  std::filesystem::create_directories(program.stateFolder() / "battery-history");
  test::writeFile(program.stateFolder() / "battery-history/001B66AABBCC.json",
                  R"({"sides": {"battery": [[1764100000, 80]]}})");
  auto masked = program.ctl({"report", QString::fromStdString(out / "Lanternbud Report.tar.gz")});
  EXPECT_EQ(masked.status, 0) << masked.errors;
  files = unpacked(out / "Lanternbud Report.tar.gz");
  std::vector<std::string> names;
  for (const auto& [name, text] : files) names.push_back(name);
  for (const char* expected : {"Bluetooth.txt", "Sound.txt", "lanternbud App Log.log", "Journal All.log",
                               "Journal Errors.log", "Journal App.log"}) {
    EXPECT_TRUE(files.contains(std::string("Lanternbud Report/") + expected)) << expected;
  }
  EXPECT_FALSE(files.contains("Lanternbud Report/LanternbudHelperTool App Log.log"));
  const auto& bluetooth = files["Lanternbud Report/Bluetooth.txt"];
  EXPECT_NE(bluetooth.find("/org/bluez/hci0/dev_00_1B_66_XX_XX_XX"), std::string::npos) << bluetooth;
  EXPECT_NE(bluetooth.find("Address: 00:1B:66:XX:XX:XX"), std::string::npos);
  EXPECT_NE(bluetooth.find("Name: K380 Keyboard"), std::string::npos);
  EXPECT_NE(files["Lanternbud Report/Sound.txt"].find("wh_headset “WH Headset”"), std::string::npos);
  EXPECT_NE(files["Lanternbud Report/Sound.txt"].find("Default sink: "), std::string::npos);
  EXPECT_EQ(files["Lanternbud Report/Battery History 001B66XXXXXX.json"],
            R"({"sides": {"battery": [[1764100000, 80]]}})");
  for (auto [name, text] : files) {
    text += name;
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    for (const char* half : {"aa:bb:cc", "aa_bb_cc", "aa-bb-cc", "aabbcc", "44:55:66", "44_55_66"})
      EXPECT_EQ(text.find(half), std::string::npos) << half << " in " << name;
  }

  // Where it cannot be written it fails and leaves nothing.
  test::writeFile(out / "a file", "");
  auto refused = program.ctl({"report", QString::fromStdString(out / "a file" / "report.tar.gz")});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.errors.find("the report could not be saved: cannot write to"), std::string::npos) << refused.errors;
  EXPECT_NE(program.logText().find("Error saving diagnostic report: cannot write to"), std::string::npos);
  auto left = std::distance(std::filesystem::directory_iterator(out.path()), std::filesystem::directory_iterator());
  EXPECT_EQ(left, 3) << "direct.tar.gz, Lanternbud Report.tar.gz and a file, no partial archive";

  // A caller that leaves (Ctrl-C, killed) takes its report along. Here a
  // sound server that never answers keeps the report waiting until it does.
  program.process().terminate();
  ASSERT_TRUE(program.process().waitForFinished(10000));
  const auto silentServer = out / "silent";
  const int silent = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, silentServer.c_str(), sizeof address.sun_path - 1);
  ASSERT_EQ(bind(silent, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(silent, 16), 0);
  program.setVariable("PULSE_SERVER", QString::fromStdString("unix:" + silentServer.string()));
  ASSERT_TRUE(program.start());
  {
    auto caller = session.connect("caller");
    auto call = QDBusMessage::createMethodCall("org.lanternbud.Lanternbud", "/org/lanternbud/Lanternbud",
                                               "org.lanternbud.Lanternbud", "SaveDiagnosticReport");
    call << QString::fromStdString(out / "left.tar.gz") << true;
    caller.send(call);
    caller.interface()->isServiceRegistered("org.lanternbud.Lanternbud"); // the call is out before the caller goes
    QDBusConnection::disconnectFromBus(caller.name());
  }
  EXPECT_TRUE(test::waitUntil([&] {
    return program.logText().find("was cancelled; nothing was saved") != std::string::npos;
  })) << program.logText();
  left = std::distance(std::filesystem::directory_iterator(out.path()), std::filesystem::directory_iterator());
  EXPECT_EQ(left, 4) << "the socket beside the three, no report";
  close(silent);
}

} // namespace lb
