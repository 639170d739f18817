#include "tests/support/PrivateBus.h"
#include "tests/support/RequireService.h"
#include "tests/support/RunningProgram.h"
#include "tests/support/XServer.h"

#include <QDBusArgument>

#include <gtest/gtest.h>

namespace lb {

namespace {

constexpr const char* headsetAddress = "00:1B:66:AA:BB:CC";
constexpr const char* keyboardAddress = "F0:99:B6:44:55:66";

// The program on private buses with the headset and keyboard paired, and
// the headset's shortcut stored.
class ShortcutsTest : public ::testing::Test {
protected:
  void SetUp() override {
    if (system.skipReason().empty()) system.startBluez();
    LB_REQUIRE_SERVICE(system.skipReason());
    LB_REQUIRE_SERVICE(session.skipReason());
    system.bluez("/", "org.bluez.Mock", "AddAdapter", {"hci0", "my-computer"});
    for (auto [address, name] : {std::pair{headsetAddress, "WH Headset"}, std::pair{keyboardAddress, "K380"}}) {
      system.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", address, name});
      system.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", address, 0x240404});
    }
    std::filesystem::create_directories(program.settingsFile().parent_path());
    test::writeFile(program.settingsFile(), std::string(R"({"devices": [
      {"deviceID": 1, "device": ")") + headsetAddress +
                                                R"("},
      {"deviceID": 2, "device": ")" + keyboardAddress +
                                                R"("}],
      "shortcutDictForDevice1": {"keySequence": "Ctrl+Alt+H"},
      "shortcutDictForDevice2": {"keySequence": "Ctrl+Alt+K"}})");
  }

  test::PrivateBus system;
  test::PrivateBus session{test::PrivateBus::Kind::session};
  test::RunningProgram program{&system, session, ""};
};

} // namespace

TEST_F(ShortcutsTest, X11KeyPressesToggleWhateverTheLocks) {
  test::XServer display;
  LB_REQUIRE_SERVICE(display.skipReason());
  program.setVariable("DISPLAY", display.display());
  program.setVariable("XDG_SESSION_TYPE", "x11");
  ASSERT_TRUE(program.start({"-TrayHostWaitInterval", "0", "-LogHotKey", "YES"}));
  // The scripting interface answers once the program has launched, its keys grabbed.
  ASSERT_TRUE(test::waitUntil([&] { return program.ctl({"list"}).status == 0; }));

  auto press = [&](const char* keys) { return display.run("xdotool", {"key", keys}).has_value(); };
  ASSERT_TRUE(press("ctrl+alt+h"));
  EXPECT_TRUE(test::waitUntil([&] { return system.bluezConnected(headsetAddress); })) << program.logText();
  EXPECT_NE(program.logText().find("User pressed shortcut for WH Headset."), std::string::npos);
  ASSERT_TRUE(press("Num_Lock"));
  ASSERT_TRUE(press("ctrl+alt+h"));
  EXPECT_TRUE(test::waitUntil([&] { return !system.bluezConnected(headsetAddress); })) << program.logText();

  // Changed while running, bound at once.
  EXPECT_EQ(program.ctl({"config", "set", "shortcutDictForDevice1", R"({"keySequence": "Ctrl+Alt+J"})"}).status, 0);
  ASSERT_TRUE(press("ctrl+alt+j"));
  EXPECT_TRUE(test::waitUntil([&] { return system.bluezConnected(headsetAddress); })) << program.logText();
}

TEST_F(ShortcutsTest, OnWaylandThePortalsActivationToggles) {
  ASSERT_TRUE(session.startPortal());
  program.setVariable("XDG_SESSION_TYPE", "wayland");
  ASSERT_TRUE(program.start());
  QStringList bound;
  EXPECT_TRUE(test::waitUntil([&] {
    bound.clear();
    const auto list = session.portal("Bound").arguments().value(0).value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
      QString id, trigger;
      list.beginStructure();
      list >> id >> trigger;
      list.endStructure();
      bound << id + "=" + trigger;
    }
    list.endArray();
    return bound.size() == 2;
  }));
  EXPECT_EQ(bound, (QStringList{"shortcutDictForDevice1=CTRL+ALT+h", "shortcutDictForDevice2=CTRL+ALT+k"}));
  session.portal("Activate", {"shortcutDictForDevice1"});
  EXPECT_TRUE(test::waitUntil([&] { return system.bluezConnected(headsetAddress); })) << program.logText();
}

} // namespace lb
