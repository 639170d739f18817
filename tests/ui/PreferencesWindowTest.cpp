#include "core/DeviceSettingManager.h"
#include "core/SettingKeys.h"
#include "linux/xdg/XdgScriptsFolder.h"
#include "ports/DiagnosticReporter.h"
#include "tests/support/Contrast.h"
#include "tests/support/SimulatedPlatform.h"
#include "tests/support/TemporaryDirectory.h"
#include "ui/AddByAddressDialog.h"
#include "ui/AdvancedSheet.h"
#include "ui/DeviceChooser.h"
#include "ui/IconPicker.h"
#include "ui/PaletteIconStyle.h"
#include "ui/PreferencesWindow.h"
#include "ui/ShortcutRecorder.h"
#include "ui/SvgImages.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QKeySequenceEdit>
#include <QApplication>
#include <QComboBox>
#include <QDesktopServices>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QProxyStyle>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include <fstream>

namespace lb {

namespace {

constexpr const char* headsetAddress = "00:1B:66:AA:BB:01";
constexpr const char* keyboardAddress = "00:1B:66:AA:BB:02";
constexpr const char* mouseAddress = "00:1B:66:AA:BB:03";

// Records what it was asked to save, and answers as the test says.
struct RecordingReporter final : DiagnosticReporter {
  Result<void> saveReport(const std::filesystem::path& destination, bool maskAddresses, const Progress& progress,
                          const std::atomic<bool>&) override {
    asked.emplace_back(destination, maskAddresses);
    progress(0, 5, "Collecting the log files");
    return answer;
  }
  std::vector<std::pair<std::filesystem::path, bool>> asked;
  Result<void> answer;
};

// What the desktop was asked to open.
class OpenedUrls final : public QObject {
  Q_OBJECT
public slots:
  void open(const QUrl& url) { urls << url; }

public:
  QList<QUrl> urls;
};

// Every label in `top` shows its whole text: wrapped ones as tall as their
// lines, the others as wide as their text.
void expectNothingCut(QWidget* top) {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
  for (auto* label : top->findChildren<QLabel*>()) {
    if (!label->isVisible() || label->text().isEmpty()) continue;
    if (label->wordWrap()) {
      EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
    } else {
      EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
    }
  }
}

// The colour of an icon's opaque pixels at 2×; none for an empty icon.
std::optional<QColor> inkOf(const QIcon& icon) {
  const auto image = icon.pixmap(QSize(24, 24), 2.0).toImage().convertToFormat(QImage::Format_ARGB32);
  double red = 0, green = 0, blue = 0, count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor pixel = image.pixelColor(x, y);
      if (pixel.alpha() < 200) continue;
      red += pixel.redF(), green += pixel.greenF(), blue += pixel.blueF(), ++count;
    }
  }
  if (count == 0) return std::nullopt;
  return QColor::fromRgbF(float(red / count), float(green / count), float(blue / count));
}

SettingsValue::Dictionary saved(std::int64_t id, const char* address) {
  return {{"deviceID", id}, {"device", std::string(address)}};
}

// The window over the simulated platform with two saved devices and one
// more paired, driven with clicks and typing.
class PreferencesWindowTest : public ::testing::Test {
protected:
  PreferencesWindowTest() {
    sim.world.addDevice(headsetAddress, "Lantern Headset", 4, 1);
    sim.world.addDevice(keyboardAddress, "Lantern Keyboard", 5, 16);
    sim.world.addDevice(mouseAddress, "Lantern Mouse", 5, 32);
  }

  // The window over the simulated platform, but for the real ports given.
  void open(const SimulatedPlatform::Replacements& real = {}) {
    services = std::make_unique<Services>(sim.servicesWith(real));
    registry = std::make_unique<DeviceSettingManager>(*services);
    for (const auto& setting : registry->deviceSettingList()) setting->setupStatusItem();
    window = std::make_unique<PreferencesWindow>(*registry, *services, reporter);
    window->present(std::nullopt);
  }
  template <class Widget>
  Widget* find(const char* name, QWidget* within = nullptr) {
    auto* found = (within ? within : window.get())->findChild<Widget*>(name);
    EXPECT_TRUE(found) << name;
    return found;
  }
  // At the left, where a check box has its box.
  void click(const char* name, QWidget* within = nullptr) {
    auto* button = find<QAbstractButton>(name, within);
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(6, button->height() / 2));
  }
  // The dialog of that kind that is open; closed ones linger until deleted.
  template <class Dialog>
  Dialog* opened() {
    for (auto* dialog : window->findChildren<Dialog*>()) {
      if (dialog->isVisible()) return dialog;
    }
    return nullptr;
  }
  QStringList rows() {
    QStringList names;
    auto* list = find<QListWidget>("devices");
    for (int row = 0; row < list->count(); ++row) names << list->item(row)->text().section('\n', 0, 0);
    return names;
  }
  SettingsValue::Dictionary savedDevice(std::size_t index) {
    const auto devices = store.value("devices");
    return *devices->as<SettingsValue::Array>()->at(index).as<SettingsValue::Dictionary>();
  }

  InMemorySettingsStore store{{{"devices", SettingsValue::Array{saved(1, headsetAddress), saved(2, keyboardAddress)}},
                               {"shortcutDictForDevice1", SettingsValue::Dictionary{{"keySequence", "Ctrl+Alt+H"}}},
                               {"shortcutForDevice1", "old"}}};
  SimulatedPlatform sim{store};
  test::TemporaryDirectory home;
  XdgScriptsFolder scriptsFolder{home.path() / "Scripts"};
  std::unique_ptr<Services> services;
  std::unique_ptr<DeviceSettingManager> registry;
  RecordingReporter reporter;
  std::unique_ptr<PreferencesWindow> window;
};

} // namespace

TEST_F(PreferencesWindowTest, TheListShowsTheDevicesWhoseOptionsApplyAndAreSavedAtOnce) {
  SvgImages artwork;
  open({.images = &artwork});
  EXPECT_EQ(window->windowTitle(), "Lanternbud Settings");
  EXPECT_EQ(rows(), (QStringList{"Lantern Headset", "Lantern Keyboard"}));
  window->present(2);
  EXPECT_EQ(find<QLabel>("deviceLabel")->text(), "Lantern Keyboard");
  ASSERT_EQ(sim.statusBar.items().size(), 2u);

  click("isActive");
  EXPECT_EQ(sim.statusBar.items().size(), 1u);
  EXPECT_EQ(savedDevice(1).at("isActive"), SettingsValue(false));
  click("isActive");
  EXPECT_EQ(sim.statusBar.items().size(), 2u);
  click("showBatteryLevel");
  click("connectOnlyMode");
  EXPECT_TRUE(registry->deviceSettingList()[1]->showBatteryLevel());
  EXPECT_EQ(savedDevice(1).at("connectOnlyMode"), SettingsValue(true));
  EXPECT_EQ(find<QLabel>("saveState")->text(), "Changes are saved as you make them.");

  // The picker: every picture once, named, dropping from its button, the
  // current one checked.
  auto* iconButton = find<QToolButton>("icon");
  QTest::mouseClick(iconButton, Qt::LeftButton);
  auto* picker = opened<IconPicker>();
  ASSERT_TRUE(picker);
  // On the screen, give or take the few pixels that offscreen windows sit
  // off where they are put.
  EXPECT_TRUE(iconButton->screen()->availableGeometry().adjusted(-4, -4, 4, 4).contains(picker->frameGeometry()));
  const auto pictures = picker->findChildren<QToolButton*>();
  EXPECT_EQ(pictures.size(), 49);
  QStringList checked;
  QToolButton* mouse = nullptr;
  for (auto* picture : pictures) {
    if (picture->isChecked()) checked << picture->text();
    if (picture->text() == "Mouse") mouse = picture;
  }
  EXPECT_EQ(checked, QStringList{"Wand"}); // saved without a choice
  ASSERT_TRUE(mouse);
  const auto outline = mouse->icon().pixmap(24, 24).toImage();
  click("connectedPictures", picker);
  EXPECT_NE(mouse->icon().pixmap(24, 24).toImage(), outline);
  mouse->click();
  EXPECT_FALSE(picker->isVisible());
  EXPECT_EQ(registry->deviceSettingList()[1]->icon(), MenuBarIconOption::mouse);
  EXPECT_EQ(savedDevice(1).at("icon"), SettingsValue("mouse"));

  // Each row says what is on.
  auto* list = find<QListWidget>("devices");
  EXPECT_EQ(list->item(1)->text(), "Lantern Keyboard\nDisconnected");
  sim.world.setConnected(keyboardAddress, true);
  sim.world.device(keyboardAddress)->setBatteryProperty("batteryPercentSingle", 80);
  sim.loop.runDue();
  registry->updateItemIcon(); // the tray's timer
  EXPECT_EQ(list->item(1)->text(), "Lantern Keyboard\nConnected · 80%");

  click(settingKey::launchAtLogin);
  EXPECT_TRUE(sim.defaults.boolValue(settingKey::launchAtLogin, false));
  sim.defaults.setValue(settingKey::launchAtLogin, false); // as lanternbud-ctl config set does
  EXPECT_FALSE(find<QCheckBox>(settingKey::launchAtLogin)->isChecked());

  // The tray's tone: chosen here, and shown when set elsewhere.
  auto* trayIcons = find<QComboBox>("trayIcons");
  EXPECT_EQ(trayIcons->currentText(), "Automatic");
  trayIcons->setCurrentIndex(trayIcons->findText("Light"));
  emit trayIcons->activated(trayIcons->currentIndex());
  EXPECT_EQ(sim.defaults.stringValue("TrayIconColor", ""), "white");
  sim.defaults.setValue("TrayIconColor", "#123456");
  EXPECT_EQ(trayIcons->currentText(), "Custom (#123456)");
  trayIcons->setCurrentIndex(trayIcons->findText("Automatic"));
  emit trayIcons->activated(trayIcons->currentIndex());
  EXPECT_FALSE(sim.defaults.object("TrayIconColor"));

  // A change from elsewhere (a script renaming, adding) shows at once.
  registry->add(mouseAddress);
  EXPECT_EQ(rows(), (QStringList{"Lantern Headset", "Lantern Keyboard", "Lantern Mouse"}));
  EXPECT_EQ(find<QLabel>("deviceLabel")->text(), "Lantern Keyboard");
}

TEST_F(PreferencesWindowTest, TheKeyboardReachesEverythingInTheOrderShown) {
  open();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  auto* list = find<QListWidget>("devices");
  list->setFocus();
  const auto edge = list->viewport()->geometry().topLeft() + QPoint(1, list->viewport()->height() - 2);
  EXPECT_EQ(list->grab().toImage().pixelColor(edge), list->palette().color(QPalette::Highlight)); // the focus shows
  QStringList order;
  for (int stop = 0; stop < 17; ++stop) {
    order << QApplication::focusWidget()->objectName();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(order,
            (QStringList{"devices", "addDevice", "remove", "addByAddress", "icon", "shortcut", "clearShortcut",
                         "isActive", "connectOnlyMode", "keepDefaultAudioInput", "showBatteryLevel", "warnLowBattery",
                         "advanced", settingKey::launchAtLogin, "trayIcons", "close", "qt_tabwidget_tabbar"}));

  // Each mnemonic once in the tab, and a label's reaches its field.
  QStringList mnemonics;
  for (auto* widget : find<QWidget>("devices")->parentWidget()->findChildren<QWidget*>()) {
    const auto text = widget->property("text").toString();
    if (const auto at = text.indexOf('&'); at >= 0) mnemonics << text.mid(at + 1, 1).toLower();
  }
  EXPECT_EQ(mnemonics.size(), QSet<QString>(mnemonics.begin(), mnemonics.end()).size())
      << mnemonics.join(" ").toStdString();
  QTest::keyClick(window.get(), Qt::Key_S, Qt::AltModifier);
  EXPECT_EQ(QApplication::focusWidget()->objectName().toStdString(), "shortcut");
  QTest::keyClick(window.get(), Qt::Key_T, Qt::AltModifier);
  EXPECT_EQ(QApplication::focusWidget()->objectName().toStdString(), "trayIcons");

  // Tab leaves a script; Ctrl+Tab types a tab.
  click("advanced");
  auto* sheet = opened<AdvancedSheet>();
  ASSERT_TRUE(sheet && QTest::qWaitForWindowActive(sheet));
  auto* script = find<QPlainTextEdit>("connectScript", sheet);
  script->setFocus();
  QTest::keyClick(script, Qt::Key_Tab, Qt::ControlModifier);
  EXPECT_EQ(script->toPlainText().toStdString(), "\t#!/bin/sh\n");
  QTest::keyClick(script, Qt::Key_Tab);
  EXPECT_EQ(sheet->focusWidget()->objectName().toStdString(), "runDisconnected");
}

TEST_F(PreferencesWindowTest, InADarkPaletteEveryPictureTakesTheTextColour) {
  const auto light = QApplication::palette();
  const QColor text(0xe0, 0xe0, 0xe0);
  // Text, button, light, dark, mid, text, bright text, base, window.
  QPalette dark(text, QColor(0x3a, 0x3a, 0x3a), QColor(0x50, 0x50, 0x50), QColor(0x20, 0x20, 0x20),
                QColor(0x30, 0x30, 0x30), text, Qt::white, QColor(0x28, 0x28, 0x28), QColor(0x30, 0x30, 0x30));
  QApplication::setPalette(dark);
  // Dark themes often put icons on their buttons, as this style does.
  struct WithButtonIcons final : QProxyStyle {
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
      return hint == SH_DialogButtonBox_ButtonsHaveIcons || QProxyStyle::styleHint(hint, option, widget, data);
    }
  };
  QApplication::setStyle(new PaletteIconStyle(new WithButtonIcons));
  SvgImages artwork;
  open({.images = &artwork});
  auto expectLegible = [&](const QIcon& icon, const QColor& background, const QString& what) {
    const auto ink = inkOf(icon);
    if (ink) {
      EXPECT_GE(test::contrast(*ink, background), 3.0) << what.toStdString();
    }
  };
  QTest::mouseClick(find<QToolButton>("icon"), Qt::LeftButton);
  auto* picker = opened<IconPicker>();
  ASSERT_TRUE(picker);
  for (auto* picture : picker->findChildren<QToolButton*>()) {
    expectLegible(picture->icon(), dark.color(QPalette::Window), picture->text());
  }
  for (auto* button : window->findChildren<QAbstractButton*>()) {
    expectLegible(button->icon(), dark.color(QPalette::Button), button->objectName());
  }
  auto* list = find<QListWidget>("devices");
  for (int row = 0; row < list->count(); ++row) {
    expectLegible(list->item(row)->icon(), dark.color(QPalette::Base), list->item(row)->text());
  }
  window.reset();
  QApplication::setStyle("Fusion");
  QApplication::setPalette(light);
}

TEST_F(PreferencesWindowTest, RemovingAsksThenTakesTheItemAndShortcutAndAnEmptyListOffersTheChooser) {
  open();
  registry->add(mouseAddress);
  auto askToRemove = [&](std::int64_t deviceID) {
    window->present(deviceID);
    click("remove");
    return opened<QMessageBox>();
  };
  auto* question = askToRemove(2);
  ASSERT_TRUE(question);
  EXPECT_EQ(question->text(), "Remove “Lantern Keyboard” from Lanternbud?");
  question->reject();
  EXPECT_EQ(rows().size(), 3);

  question = askToRemove(1);
  ASSERT_TRUE(question);
  EXPECT_TRUE(question->informativeText().startsWith("Its tray icon, its connect and disconnect scripts and its "
                                                     "shortcut Ctrl+Alt+H go with it."));
  click("confirmRemove", question);
  EXPECT_EQ(rows(), (QStringList{"Lantern Keyboard", "Lantern Mouse"}));
  EXPECT_EQ(find<QLabel>("deviceLabel")->text(), "Lantern Keyboard"); // the neighbour
  EXPECT_EQ(sim.statusBar.items().size(), 2u);
  EXPECT_FALSE(store.value("shortcutDictForDevice1"));
  EXPECT_FALSE(store.value("shortcutForDevice1"));
  EXPECT_EQ(savedDevice(0).at("deviceID"), SettingsValue(std::int64_t{2}));

  registry->remove(3); // the mouse
  question = askToRemove(2);
  ASSERT_TRUE(question);
  EXPECT_EQ(question->informativeText(), "Its tray icon and its connect and disconnect scripts go with it. The device "
                                         "stays paired with this computer.");
  click("confirmRemove", question);
  EXPECT_TRUE(rows().isEmpty());
  EXPECT_EQ(find<QLabel>("deviceLabel")->text(), "Click + to add a paired device.");
  EXPECT_FALSE(find<QCheckBox>("isActive")->isEnabled());
  auto* chooser = opened<DeviceChooser>();
  ASSERT_TRUE(chooser);
  auto* paired = find<QListWidget>("paired", chooser);
  ASSERT_EQ(paired->count(), 3);
  // Several at once; then nothing is left to add, and the chooser offers the
  // desktop's Bluetooth settings.
  for (int row = 0; row < 3; ++row) paired->item(row)->setSelected(true);
  click("add", chooser);
  ASSERT_EQ(registry->deviceSettingList().size(), 3u);
  const auto& added = registry->deviceSettingList()[0];
  EXPECT_EQ(added->deviceID(), 4);
  EXPECT_EQ(added->icon(), MenuBarIconOption::headset);
  EXPECT_EQ(rows(), (QStringList{"Lantern Headset", "Lantern Keyboard", "Lantern Mouse"}));
  EXPECT_EQ(find<QLabel>("deviceLabel")->text(), "Lantern Mouse");
  click("addDevice");
  chooser = opened<DeviceChooser>();
  ASSERT_TRUE(chooser);
  EXPECT_TRUE(find<QLabel>("message", chooser)->text().startsWith("Every paired device is in Lanternbud already."));
  expectNothingCut(chooser);
  EXPECT_TRUE(find<QPushButton>("bluetoothSettings", chooser)->isVisible());
  sim.desktopSettings.installed = false;
  click("bluetoothSettings", chooser);
  EXPECT_TRUE(find<QLabel>("message", chooser)->text().startsWith("No Bluetooth settings program was found."));
}

// Where BlueZ is not running, the devices have no names, and the chooser
// says how to start it, over the window; it lists the paired devices once
// BlueZ is back.
TEST_F(PreferencesWindowTest, WithoutBluetoothTheChooserSaysHowToStartIt) {
  sim.world.setServiceRunning(false);
  open();
  EXPECT_EQ(rows(), (QStringList{"Unknown device", "Unknown device"}));
  click("addDevice");
  auto* chooser = opened<DeviceChooser>();
  ASSERT_TRUE(chooser);
  EXPECT_TRUE(window->frameGeometry().contains(chooser->frameGeometry().center()));
  EXPECT_TRUE(find<QLabel>("message", chooser)->text().startsWith("The Bluetooth service is not running"));
  sim.world.setServiceRunning(true);
  EXPECT_EQ(find<QListWidget>("paired", chooser)->count(), 1);
}

TEST_F(PreferencesWindowTest, TheShortcutIsRecordedShownAndClearedAndRefusedWithItsReason) {
  open();
  auto* edit = find<QKeySequenceEdit>("shortcut");
  auto* note = find<QLabel>("shortcutNote");
  EXPECT_EQ(edit->keySequence().toString(), "Ctrl+Alt+H");
  QTest::keyClick(edit, Qt::Key_J, Qt::ControlModifier | Qt::AltModifier);
  EXPECT_EQ(store.value("shortcutDictForDevice1"),
            SettingsValue(SettingsValue::Dictionary{{"keySequence", "Ctrl+Alt+J"}}));
  EXPECT_TRUE(sim.globalKeys.isGrabbed("Ctrl+Alt+J"));

  // While the field listens, the shortcuts rest: their keys reach it, and
  // one that another device has is refused by name.
  window->present(2);
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  edit->setFocus();
  ASSERT_TRUE(edit->hasFocus());
  EXPECT_FALSE(sim.globalKeys.isGrabbed("Ctrl+Alt+J"));
  QTest::keyClick(edit, Qt::Key_J, Qt::ControlModifier | Qt::AltModifier);
  EXPECT_EQ(note->text(), "Ctrl+Alt+J cannot be the shortcut: It is the shortcut of Lantern Headset already.");
  QTest::keyClick(edit, Qt::Key_K);
  EXPECT_TRUE(note->text().startsWith("K cannot be the shortcut: Use Ctrl, Alt or the Super key"));
  EXPECT_FALSE(store.value("shortcutDictForDevice2"));
  EXPECT_TRUE(edit->keySequence().isEmpty());
  // The tray's icon timer leaves the refusal as it is.
  registry->updateItemIcon();
  EXPECT_TRUE(note->text().startsWith("K cannot be the shortcut"));

  find<QListWidget>("devices")->setFocus();
  EXPECT_TRUE(sim.globalKeys.isGrabbed("Ctrl+Alt+J"));
  window->present(1);
  click("clearShortcut");
  EXPECT_FALSE(store.value("shortcutDictForDevice1"));
  EXPECT_FALSE(sim.globalKeys.isGrabbed("Ctrl+Alt+J"));

  // Where the desktop gives programs no global keys, the way that works.
  SimGlobalKeys none;
  none.available = false;
  ShortcutBinder nowhere(sim.defaults, none);
  ShortcutRecorder recorder(nowhere, nullptr);
  recorder.setDevice("shortcutDictForDevice1", 1);
  EXPECT_FALSE(recorder.findChild<QKeySequenceEdit*>("shortcut")->isEnabled());
  EXPECT_TRUE(recorder.findChild<QLabel*>("shortcutNote")->text().contains("Bind “lanternbud-ctl toggle 1”"));
}

// The About tab shows the version, opens the manual, and saves a report
// where the user says, saying how it went.
TEST_F(PreferencesWindowTest, TheAboutTabShowsTheVersionOpensTheManualAndSavesAReport) {
  open();
  auto* version = find<QLabel>("version");
  EXPECT_TRUE(QRegularExpression(R"(^Version \d+\.\d+\.\d+$)").match(version->text()).hasMatch());
  EXPECT_TRUE(version->toolTip().startsWith("Build ")) << version->toolTip().toStdString();
  EXPECT_FALSE(find<QPushButton>("support")->isVisibleTo(window.get())); // no support page was set
  QTest::mouseClick(find<QPushButton>("manual"), Qt::LeftButton);
  EXPECT_EQ(sim.alerts.helpPagesOpened, std::vector<std::string>{"index"});

  auto save = [&](const char* name) {
    click("saveReport");
    auto* dialog = opened<QFileDialog>();
    EXPECT_TRUE(dialog && dialog->selectedFiles().value(0).endsWith(".tar.gz")); // a name is offered
    dialog->selectFile(QString::fromStdString(home / name));
    static_cast<QDialog*>(dialog)->accept(); // QFileDialog hides it
    sim.loop.runDue();                       // the worker writes, the window hears
  };
  auto* outcome = find<QLabel>("reportOutcome");
  // The name offered is in the user's language.
  installTranslator([](std::string_view english, int) {
    return english == "Lanternbud Report %1" ? std::optional<std::string>("Lanternbud-Bericht %1") : std::nullopt;
  });
  click("saveReport");
  installTranslator(nullptr);
  auto* offered = opened<QFileDialog>();
  ASSERT_TRUE(offered);
  EXPECT_TRUE(offered->selectedFiles().value(0).contains("/Lanternbud-Bericht "))
      << offered->selectedFiles()[0].toStdString();
  offered->reject();
  save("report.tar.gz");
  ASSERT_EQ(reporter.asked.size(), 1u);
  EXPECT_EQ(reporter.asked[0], std::pair(home / "report.tar.gz", true)); // masked unless unticked
  EXPECT_EQ(outcome->text(), "Saved the report as “report.tar.gz”.");
  expectNothingCut(window.get());
  OpenedUrls shown;
  QDesktopServices::setUrlHandler("file", &shown, "open");
  click("showReport");
  QDesktopServices::unsetUrlHandler("file");
  EXPECT_EQ(shown.urls, QList{QUrl::fromLocalFile(QString::fromStdString(home.path().string()))});
  EXPECT_FALSE(opened<QProgressDialog>());

  click("maskAddresses");
  reporter.answer = Failure{"No space left on device"};
  save("full.tar.gz");
  EXPECT_EQ(reporter.asked.back(), std::pair(home / "full.tar.gz", false));
  ASSERT_EQ(sim.alerts.shown.size(), 1u);
  EXPECT_EQ(sim.alerts.shown[0].message, "The diagnostic report could not be saved.");
  EXPECT_EQ(sim.alerts.shown[0].informativeText, "No space left on device");
  EXPECT_EQ(outcome->text(), "The report could not be saved.");
  EXPECT_FALSE(find<QPushButton>("showReport")->isVisible());
}

TEST_F(PreferencesWindowTest, AddingByAddressTakesTheUsualFormsAndSaysWhatIsWrong) {
  open();
  click("addByAddress");
  auto* dialog = opened<AddByAddressDialog>();
  ASSERT_TRUE(dialog);
  auto* address = find<QLineEdit>("address", dialog);
  auto* add = find<QPushButton>("add", dialog);
  auto* problem = find<QLabel>("problem", dialog);
  auto type = [&](const char* text) {
    address->clear();
    QTest::keyClicks(address, text);
  };

  for (const char* malformed : {"", "00:1B:66:AA:BB", "00:1B:66:AA:BB:0G", "00:1B-66:AA:BB:03"}) {
    type(malformed);
    EXPECT_FALSE(add->isEnabled()) << malformed;
  }
  type("aa-bb-cc-dd-ee-ff");
  ASSERT_TRUE(add->isEnabled());
  QTest::mouseClick(add, Qt::LeftButton);
  EXPECT_TRUE(problem->isVisible());
  EXPECT_TRUE(problem->text().contains("knows no Bluetooth device at AA:BB:CC:DD:EE:FF"))
      << problem->text().toStdString();
  expectNothingCut(dialog);
  type(keyboardAddress);
  QTest::mouseClick(add, Qt::LeftButton);
  EXPECT_EQ(problem->text(), "The device has already been added.");
  EXPECT_EQ(registry->deviceSettingList().size(), 2u);

  type(" 00-1b-66-aa-bb-03 ");
  QTest::keyClick(address, Qt::Key_Return);
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(rows(), (QStringList{"Lantern Headset", "Lantern Keyboard", "Lantern Mouse"}));
  EXPECT_EQ(find<QLabel>("deviceLabel")->text(), "Lantern Mouse");
  EXPECT_EQ(sim.statusBar.items().size(), 3u);
  EXPECT_EQ(registry->deviceSettingList()[2]->icon(), MenuBarIconOption::mouse);
}

TEST_F(PreferencesWindowTest, ScriptsAreWrittenOnDoneAndAFailedWriteKeepsTheText) {
  open({.scriptsFolder = &scriptsFolder});
  click("advanced");
  auto* sheet = opened<AdvancedSheet>();
  ASSERT_TRUE(sheet);
  auto* connectScript = find<QPlainTextEdit>("connectScript", sheet);
  EXPECT_EQ(connectScript->toPlainText(), "#!/bin/sh\n");
  EXPECT_EQ(find<QPlainTextEdit>("disconnectScript", sheet)->toPlainText(), "#!/bin/sh\n");
  connectScript->moveCursor(QTextCursor::End);
  QTest::keyClicks(connectScript, "echo \"it's\" -- connected");
  auto* notRun = find<QLabel>("connectedNote", sheet);
  EXPECT_TRUE(notRun->isVisible()); // typed, but its switch is off
  click("runConnected", sheet);
  EXPECT_FALSE(notRun->isVisible());
  click("done", sheet);
  EXPECT_FALSE(sheet->isVisible());

  const auto file = home.path() / "Scripts/1.connected";
  std::ifstream written(file);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(written), {}), "#!/bin/sh\necho \"it's\" -- connected");
  EXPECT_EQ(std::filesystem::status(file).permissions() & std::filesystem::perms::all,
            std::filesystem::perms::owner_all);
  EXPECT_FALSE(std::filesystem::exists(home.path() / "Scripts/1.disconnected")); // unchanged: no file
  EXPECT_TRUE(registry->deviceSettingList()[0]->runShellScriptAfterConnected());

  // A folder that cannot be written: the sheet says so and keeps the text.
  std::filesystem::remove_all(home.path() / "Scripts");
  std::ofstream(home.path() / "Scripts") << "in the way";
  click("advanced");
  sheet = opened<AdvancedSheet>();
  ASSERT_TRUE(sheet);
  auto* disconnectScript = find<QPlainTextEdit>("disconnectScript", sheet);
  disconnectScript->moveCursor(QTextCursor::End);
  QTest::keyClicks(disconnectScript, "echo bye");
  click("done", sheet);
  EXPECT_TRUE(sheet->isVisible());
  EXPECT_TRUE(find<QLabel>("problem", sheet)->text().startsWith("Unable to write script to the folder."));
  expectNothingCut(sheet);
  EXPECT_EQ(disconnectScript->toPlainText(), "#!/bin/sh\necho bye");
  EXPECT_EQ(registry->deviceSettingList()[0]->shellScriptAfterDisconnected(), "#!/bin/sh\necho bye");

  // Removed from elsewhere while its scripts are open: they close unwritten.
  registry->remove(registry->deviceSettingList()[0]->deviceID());
  EXPECT_FALSE(sheet->isVisible());
}

} // namespace lb

#include "PreferencesWindowTest.moc"
