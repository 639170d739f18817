#include "tests/support/Contrast.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/PulseServer.h"
#include "tests/support/RequireService.h"
#include "tests/support/RunningProgram.h"
#include "tests/support/XServer.h"
#include "tests/support/XfcePanel.h"
#include "ui/StatusNotifierTypes.h"

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

// The program under Xvfb, in Xfce's panel; its items also read and
// clicked over StatusNotifierItem and dbusmenu as a panel does.
class TrayTest : public ::testing::Test {
protected:
  void SetUp() override {
    LB_REQUIRE_SERVICE(display.skipReason());
    if (system.skipReason().empty()) system.startBluez();
    LB_REQUIRE_SERVICE(system.skipReason());
    LB_REQUIRE_SERVICE(session.skipReason());
    panel = std::make_unique<test::XfcePanel>(display, session);
    LB_REQUIRE_SERVICE(panel->skipReason());
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

  // The watcher names an item "<bus name>/<object path>".
  static std::pair<QString, QString> address(const QString& item) {
    const auto slash = item.indexOf('/');
    if (slash < 0) return {item, "/StatusNotifierItem"};
    return {item.left(slash), item.mid(slash)};
  }
  QDBusMessage call(const QString& item, const QString& path, const QString& interface, const QString& method,
                    const QVariantList& arguments = {}) {
    auto message = QDBusMessage::createMethodCall(address(item).first, path, interface, method);
    message.setArguments(arguments);
    return host.call(message, QDBus::Block, 5000);
  }
  QVariant itemProperty(const QString& item, const char* name) {
    return call(item, address(item).second, "org.freedesktop.DBus.Properties", "Get",
                {"org.kde.StatusNotifierItem", name})
        .arguments()
        .value(0)
        .value<QDBusVariant>()
        .variant();
  }
  QString text(const QString& item) { return qdbus_cast<SniToolTip>(itemProperty(item, "ToolTip")).text; }
  // Every size of the picture, one after the other.
  QByteArray pixmaps(const QString& item) {
    QByteArray all;
    for (const auto& pixmap : qdbus_cast<SniPixmaps>(itemProperty(item, "IconPixmap"))) all += pixmap.bytes;
    return all;
  }
  void activate(const QString& item) {
    call(item, address(item).second, "org.kde.StatusNotifierItem", "Activate", {0, 0});
  }
  // The menu's labels as the panel reads them, a separator as "-", and the
  // IDs of the entries that can be chosen.
  QStringList menu(const QString& item, QList<int>* enabled = nullptr) {
    const auto menuPath = itemProperty(item, "Menu").value<QDBusObjectPath>().path();
    call(item, menuPath, "com.canonical.dbusmenu", "AboutToShow", {0});
    const auto root = qdbus_cast<DBusMenuLayout>(
        call(item, menuPath, "com.canonical.dbusmenu", "GetLayout", {0, -1, QStringList()}).arguments().value(1));
    QStringList labels;
    for (const auto& entry : root.children) {
      labels << (entry.properties.value("type") == "separator" ? "-" : entry.properties.value("label").toString());
      if (enabled && entry.properties.value("enabled", true).toBool() && labels.back() != "-") *enabled << entry.id;
    }
    return labels;
  }
  void choose(const QString& item, int id) {
    call(item, itemProperty(item, "Menu").value<QDBusObjectPath>().path(), "com.canonical.dbusmenu", "Event",
         {id, "clicked", QVariant::fromValue(QDBusVariant(0)), 0u});
  }
  // The item whose tool tip text begins so.
  QString itemOf(const QString& beginning) {
    for (const auto& item : session.statusNotifierItems()) {
      if (text(item).startsWith(beginning)) return item;
    }
    return {};
  }

  test::XServer display;
  test::PrivateBus system;
  test::PrivateBus session{test::PrivateBus::Kind::session};
  std::unique_ptr<test::XfcePanel> panel;
  test::PulseServer pulse;
  QDBusConnection host = session.connect("host");
  std::unique_ptr<test::RunningProgram> program;
};

} // namespace

TEST_F(TrayTest, EachActiveDeviceHasAnItemThatShowsItsStateAndTakesClicks) {
  ASSERT_TRUE(program->start());
  QString headset, stalling;
  ASSERT_TRUE(test::waitUntil([&] {
    headset = itemOf("WH Headset - Disconnected.");
    stalling = itemOf("Slow Headset - Disconnected.");
    return !headset.isEmpty() && !stalling.isEmpty();
  })) << program->logText();
  EXPECT_EQ(session.statusNotifierItems().size(), 2); // none for the inactive keyboard

  // Every item stands out from Xfce's dark panel by 3:1.
  const auto file = program->stateFolder() / "screen.png";
  std::vector<double> items; // the strongest contrast in each run of columns that differ from the panel
  test::waitUntil([&] {
    if (!display.screenshot(file.string())) return false;
    const QImage screen(QString::fromStdString(file.string()));
    const QColor panelColour = screen.pixelColor(screen.width() - 4, 16);
    items.clear();
    bool inItem = false;
    for (int x = 0; x < screen.width(); ++x) {
      double strongest = 1;
      for (int y = 0; y < 32; ++y)
        strongest = std::max(strongest, test::contrast(screen.pixelColor(x, y), panelColour));
      if (strongest > 1.1 && !inItem) items.push_back(1);
      if (strongest > 1.1) items.back() = std::max(items.back(), strongest);
      inItem = strongest > 1.1;
    }
    return items.size() >= 2;
  });
  ASSERT_GE(items.size(), 2u);
  for (double each : items) EXPECT_GE(each, 3.0);

  // The menu offers what the click does first.
  EXPECT_EQ(menu(headset), (QStringList{"Connect", "-", "WH Headset - Disconnected", "Battery Level: Unknown", "-",
                                        "Settings…", "-", "Quit"}));

  // A click connects; the picture follows the state, dimmed while another
  // device is the sound output.
  const auto disconnected = pixmaps(headset);
  activate(headset);
  EXPECT_TRUE(test::waitUntil([&] { return system.bluezConnected(headsetAddress); }));
  EXPECT_TRUE(test::waitUntil([&] { return text(headset).startsWith("WH Headset - Connected.\n"); }))
      << text(headset).toStdString();
  const auto output = pixmaps(headset);
  pulse.pactl("set-default-sink builtin");
  EXPECT_TRUE(test::waitUntil([&] { return text(headset).contains("(Not Sound Output)"); }));
  const auto notOutput = pixmaps(headset);
  EXPECT_NE(disconnected, output);
  EXPECT_NE(output, notOutput);
  EXPECT_NE(disconnected, notOutput);

  // The menu's first entry makes it the output, then disconnects it.
  QList<int> enabled;
  EXPECT_EQ(menu(headset, &enabled).mid(0, 3), (QStringList{"Make Sound Output", "Disconnect", "-"}));
  ASSERT_FALSE(enabled.isEmpty());
  choose(headset, enabled.front());
  EXPECT_TRUE(test::waitUntil([&] { return !text(headset).contains("(Not Sound Output)"); }));
  enabled.clear();
  EXPECT_TRUE(test::waitUntil([&] { return menu(headset, &enabled).front() == "Disconnect"; }));
  choose(headset, enabled.front());
  EXPECT_TRUE(test::waitUntil([&] { return !system.bluezConnected(headsetAddress); }));

  // While a connection attempt runs (BlueZ holds it), the spinner turns and
  // the menu says so; after, the connected picture shows.
  const auto before = pixmaps(stalling);
  system.pauseBluez(true);
  activate(stalling);
  QByteArray first;
  EXPECT_TRUE(test::waitUntil([&] {
    const auto now = pixmaps(stalling);
    if (first.isEmpty() && now != before) first = now;
    return !first.isEmpty() && now != first && now != before;
  }));
  EXPECT_EQ(menu(stalling).front(), "Connecting…");
  system.pauseBluez(false);
  EXPECT_TRUE(test::waitUntil([&] { return text(stalling).startsWith("Slow Headset - Connected."); }));
}

// Xfce's panel lists each device as an item of its own (so that each can
// be hidden alone), by an Id that stays across a restart of the program, in
// the order of the device list again after the panel restarts.
TEST_F(TrayTest, XfceKnowsEachDeviceApartAndInOrder) {
  // The device list's order, backwards: Xfce puts the item it meets first
  // last, and places the items in its list's order.
  const QStringList ids{"lanternbud-001b66000002", "lanternbud-001b66aabbcc"};
  ASSERT_TRUE(program->start());
  ASSERT_TRUE(test::waitUntil([&] { return panel->trayList("known-items").size() == 2; })) << program->logText();
  EXPECT_EQ(panel->trayList("known-items"), ids);
  QStringList titles;
  for (const auto& item : session.statusNotifierItems()) titles << itemProperty(item, "Title").toString();
  titles.sort();
  EXPECT_EQ(titles, (QStringList{"Slow Headset", "WH Headset"}));

  program->process().terminate();
  ASSERT_TRUE(program->process().waitForFinished(10000));
  ASSERT_TRUE(program->start());
  ASSERT_TRUE(test::waitUntil([&] { return session.statusNotifierItems().size() == 2; }));
  EXPECT_EQ(panel->trayList("known-items"), ids); // the same two rows

  // A panel that forgot them hears of them again, in order.
  ASSERT_TRUE(panel->setTrayList("known-items", {}));
  ASSERT_TRUE(panel->restart());
  EXPECT_TRUE(test::waitUntil([&] { return panel->trayList("known-items").size() == 2; })) << program->logText();
  EXPECT_EQ(panel->trayList("known-items"), ids);
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
  // Should trayer claim the tray only after the program looked, the program
  // looks again after this wait.
  ASSERT_TRUE(program.start({"--demo", "-TrayIconColor", "white", "-TrayHostWaitInterval", "30"}));

  // The panel sits at the top right, 32 pixels tall, in one colour; the
  // items are what differs from it.
  const auto file = program.stateFolder() / "screen.png";
  int whitePixels = 0;
  // A bound for a slow start under the sanitizers; it only catches a hang.
  EXPECT_TRUE(test::waitUntil(
      [&] {
        if (!display.screenshot(file.string())) return false;
        const QImage screen(QString::fromStdString(file.string()));
        whitePixels = 0;
        for (int y = 0; y < 32; ++y) {
          for (int x = screen.width() / 2; x < screen.width(); ++x)
            whitePixels += screen.pixel(x, y) == qRgb(255, 255, 255);
        }
        return whitePixels > 5 * 20; // five items, each more than a few dots
      },
      60))
      << whitePixels << " white pixels\n"
      << program.logText();
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
