#include "tests/support/PrivateBus.h"
#include "tests/support/PulseServer.h"
#include "tests/support/RequireService.h"
#include "tests/support/RunningProgram.h"
#include "tests/support/XServer.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QImage>

#include <gtest/gtest.h>

namespace lb {

namespace {

constexpr const char* headsetAddress = "00:1B:66:AA:BB:CC";
constexpr const char* keyboardAddress = "F0:99:B6:44:55:66";
constexpr const char* stallingAddress = "00:1B:66:00:00:02";

// The program under Xvfb, its items read and clicked as a panel would:
// over StatusNotifierItem and dbusmenu on a session bus with a watcher.
class TrayTest : public ::testing::Test {
protected:
  void SetUp() override {
    LB_REQUIRE_SERVICE(display.skipReason());
    if (system.skipReason().empty()) system.startBluez();
    LB_REQUIRE_SERVICE(system.skipReason());
    if (session.skipReason().empty()) session.startStatusNotifierWatcher();
    LB_REQUIRE_SERVICE(session.skipReason());
    LB_REQUIRE_SERVICE(pulse.skipReason());
    system.bluez("/", "org.bluez.Mock", "AddAdapter", {"hci0", "my-computer"});
    for (auto [address, name] : {std::pair{headsetAddress, "WH Headset"}, std::pair{keyboardAddress, "K380 Keyboard"},
                                 std::pair{stallingAddress, "Slow Headset"}}) {
      system.bluez("/", "org.bluez.Mock", "AddDevice", {"hci0", address, name});
      system.bluez("/", "org.bluez.Mock", "PairDevice", {"hci0", address, 0x240404});
    }
    pulse.loadBluetoothSink("wh_headset", headsetAddress, "WH Headset");
    pulse.pactl("set-default-sink builtin");
    program = std::make_unique<test::RunningProgram>(&system, session, pulse.server());
    program->setVariable("DISPLAY", display.display());
    std::filesystem::create_directories(program->settingsFile().parent_path());
    test::writeFile(program->settingsFile(), std::string(R"({"devices": [
      {"deviceID": 1, "device": ")") + headsetAddress +
                                                 R"(", "icon": "headphones"},
      {"deviceID": 2, "device": ")" + keyboardAddress +
                                                 R"(", "isActive": false},
      {"deviceID": 3, "device": ")" + stallingAddress +
                                                 R"("}]})");
  }

  QVariant itemProperty(const QString& item, const char* name) {
    auto get = QDBusMessage::createMethodCall(item, "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get");
    get << "org.kde.StatusNotifierItem" << name;
    return panel.call(get, QDBus::Block, 5000).arguments().value(0).value<QDBusVariant>().variant();
  }
  // The tool tip's title, where the item puts its text.
  QString toolTip(const QString& item) {
    const auto argument = itemProperty(item, "ToolTip").value<QDBusArgument>();
    QString iconName, title, description;
    argument.beginStructure();
    argument >> iconName;
    readPixmaps(argument);
    argument >> title >> description;
    argument.endStructure();
    return title;
  }
  // Every size of the picture, one after the other.
  QByteArray pixmaps(const QString& item) {
    return readPixmaps(itemProperty(item, "IconPixmap").value<QDBusArgument>());
  }
  static QByteArray readPixmaps(const QDBusArgument& argument) {
    QByteArray all;
    argument.beginArray();
    while (!argument.atEnd()) {
      int width = 0, height = 0;
      QByteArray bytes;
      argument.beginStructure();
      argument >> width >> height >> bytes;
      argument.endStructure();
      all += bytes;
    }
    argument.endArray();
    return all;
  }
  void activate(const QString& item) {
    auto call = QDBusMessage::createMethodCall(item, "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate");
    call << 0 << 0;
    panel.call(call, QDBus::Block, 5000);
  }
  // The item whose tool tip begins with the device's name.
  QString itemOf(const QString& name) {
    for (const auto& item : session.statusNotifierItems()) {
      if (toolTip(item).startsWith(name)) return item;
    }
    return {};
  }

  test::XServer display;
  test::PrivateBus system;
  test::PrivateBus session{test::PrivateBus::Kind::session};
  test::PulseServer pulse;
  QDBusConnection panel = session.connect("panel");
  std::unique_ptr<test::RunningProgram> program;
};

} // namespace

TEST_F(TrayTest, EachActiveDeviceHasAnItemThatShowsItsStateAndTakesClicks) {
  // A connection attempt that hangs a while, for the spinner.
  system.bluez(test::PrivateBus::bluezDevicePath(stallingAddress), "org.freedesktop.DBus.Mock", "AddMethod",
               {"org.bluez.Device1", "Connect", "", "", "time.sleep(3)"});
  ASSERT_TRUE(program->start());
  QString headset, stalling;
  ASSERT_TRUE(test::waitUntil([&] {
    headset = itemOf("WH Headset - Disconnected.");
    stalling = itemOf("Slow Headset - Disconnected.");
    return !headset.isEmpty() && !stalling.isEmpty();
  })) << program->logText();
  EXPECT_EQ(session.statusNotifierItems().size(), 2); // none for the inactive keyboard
  EXPECT_NE(program->logText().find("Tray: StatusNotifierItem over D-Bus"), std::string::npos);

  // The menu, as the panel reads it over dbusmenu.
  auto layout = QDBusMessage::createMethodCall(headset, itemProperty(headset, "Menu").value<QDBusObjectPath>().path(),
                                               "com.canonical.dbusmenu", "GetLayout");
  layout << 0 << -1 << QStringList();
  const auto root = panel.call(layout, QDBus::Block, 5000).arguments().value(1).value<QDBusArgument>();
  int ID = 0;
  QVariantMap properties;
  QStringList entries;
  root.beginStructure();
  root >> ID >> properties;
  root.beginArray();
  while (!root.atEnd()) {
    QDBusVariant child;
    root >> child;
    const auto entry = child.variant().value<QDBusArgument>();
    entry.beginStructure();
    entry >> ID >> properties;
    entry.endStructure();
    entries << (properties.value("type") == "separator" ? "-" : properties.value("label").toString());
  }
  root.endArray();
  root.endStructure();
  EXPECT_EQ(entries,
            (QStringList{"WH Headset - Disconnected", "Battery Level: Unknown", "-", "Settings…", "-", "Quit"}));

  // A click connects; the picture follows the state, dimmed while another
  // device is the sound output.
  const auto disconnected = pixmaps(headset);
  activate(headset);
  EXPECT_TRUE(test::waitUntil([&] { return system.bluezConnected(headsetAddress); }));
  EXPECT_TRUE(test::waitUntil([&] { return toolTip(headset).startsWith("WH Headset - Connected.\n"); }))
      << toolTip(headset).toStdString();
  const auto output = pixmaps(headset);
  pulse.pactl("set-default-sink builtin");
  EXPECT_TRUE(test::waitUntil([&] { return toolTip(headset).contains("(Not Sound Output)"); }));
  const auto notOutput = pixmaps(headset);
  EXPECT_NE(disconnected, output);
  EXPECT_NE(output, notOutput);
  EXPECT_NE(disconnected, notOutput);

  // While a connection attempt runs, the spinner turns; after, the picture
  // is back.
  const auto before = pixmaps(stalling);
  activate(stalling);
  QByteArray first;
  EXPECT_TRUE(test::waitUntil(
      [&] {
        const auto now = pixmaps(stalling);
        if (first.isEmpty() && now != before) first = now;
        return !first.isEmpty() && now != first && now != before;
      },
      3));
  EXPECT_TRUE(test::waitUntil([&] { return pixmaps(stalling) == before; }, 30));
}

// Without a StatusNotifierWatcher, an XEmbed panel shows the items.
TEST(XEmbedTray, ShowsTheDemosItems) {
  test::XServer display;
  LB_REQUIRE_SERVICE(display.skipReason());
  if (display.skipReason().empty()) display.startTrayPanel();
  LB_REQUIRE_SERVICE(display.skipReason());
  test::PrivateBus session(test::PrivateBus::Kind::session);
  LB_REQUIRE_SERVICE(session.skipReason());
  test::RunningProgram program(nullptr, session, "");
  program.setVariable("DISPLAY", display.display());
  ASSERT_TRUE(program.start({"--demo", "-TrayIconColor", "white"}));
  EXPECT_TRUE(test::waitUntil([&] { return program.logText().find("Tray: XEmbed system tray") != std::string::npos; }))
      << program.logText();

  // The panel sits at the top right, 32 pixels tall, in one colour; the
  // items are what differs from it.
  const auto file = program.stateFolder() / "screen.png";
  int whitePixels = 0;
  test::waitUntil([&] {
    if (!display.screenshot(file.string())) return false;
    const QImage screen(QString::fromStdString(file.string()));
    whitePixels = 0;
    for (int y = 0; y < 32; ++y) {
      for (int x = screen.width() / 2; x < screen.width(); ++x)
        whitePixels += screen.pixel(x, y) == qRgb(255, 255, 255);
    }
    return whitePixels > 5 * 20; // five items, each more than a few dots
  });
  EXPECT_GT(whitePixels, 100);
}

// The settings window stays closed while there are devices; a second start
// opens the running program's, raised.
TEST(SettingsWindow, ASecondStartRaisesIt) {
  test::XServer display;
  LB_REQUIRE_SERVICE(display.skipReason());
  test::PrivateBus session(test::PrivateBus::Kind::session);
  LB_REQUIRE_SERVICE(session.skipReason());
  test::RunningProgram program(nullptr, session, "");
  program.setVariable("DISPLAY", display.display());
  ASSERT_TRUE(program.start({"--demo", "-TrayHostWaitInterval", "0"}));
  EXPECT_FALSE(display.windowShown("Lanternbud Settings"));
  const auto second = program.run("lanternbud", {"--demo"});
  EXPECT_EQ(second.status, 0);
  EXPECT_NE(second.errors.find("asked to show its preferences"), std::string::npos) << second.errors;
  EXPECT_TRUE(test::waitUntil([&] { return display.windowShown("Lanternbud Settings"); })) << program.logText();
}

} // namespace lb
