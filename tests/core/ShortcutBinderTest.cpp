#include "core/ShortcutBinder.h"
#include "sim/InMemorySettingsStore.h"
#include "sim/SimGlobalKeys.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace lb {

namespace {

struct Bindings {
  InMemorySettingsStore store{{{"shortcutDictForDevice1", SettingsValue::Dictionary{{"keySequence", "Ctrl+Alt+H"}}}}};
  UserDefaults defaults{store};
  SimGlobalKeys keys;
  ShortcutBinder binder{defaults, keys};
  int headsetPresses = 0;
  int keyboardPresses = 0;

  void bindBoth() {
    binder.bindShortcut("shortcutDictForDevice1", "Headset", [this] { ++headsetPresses; });
    binder.bindShortcut("shortcutDictForDevice2", "Keyboard", [this] { ++keyboardPresses; });
  }
};

} // namespace

TEST(ShortcutBinder, StoredKeysAreBoundAndFollowEveryChangeOfTheSetting) {
  Bindings b;
  b.bindBoth();
  b.keys.press("Ctrl+Alt+H");
  EXPECT_EQ(b.headsetPresses, 1);
  EXPECT_EQ(b.binder.state("shortcutDictForDevice1").trigger, "Ctrl+Alt+H");
  EXPECT_FALSE(b.binder.state("shortcutDictForDevice2").keySequence);

  // As lanternbud-ctl config set writes it, and as the recorder does.
  b.defaults.setValue("shortcutDictForDevice2", SettingsValue::Dictionary{{"keySequence", "Meta+K"}});
  b.keys.press("Meta+K");
  EXPECT_EQ(b.keyboardPresses, 1);
  ASSERT_TRUE(b.binder.setShortcut("shortcutDictForDevice1", "F7"));
  EXPECT_FALSE(b.keys.isGrabbed("Ctrl+Alt+H"));
  b.keys.press("F7");
  EXPECT_EQ(b.headsetPresses, 2);
  EXPECT_EQ(b.store.value("shortcutDictForDevice1"), SettingsValue(SettingsValue::Dictionary{{"keySequence", "F7"}}));

  ASSERT_TRUE(b.binder.setShortcut("shortcutDictForDevice1", std::nullopt));
  EXPECT_FALSE(b.store.value("shortcutDictForDevice1"));
  EXPECT_FALSE(b.keys.isGrabbed("F7"));
  b.binder.breakBinding("shortcutDictForDevice2");
  EXPECT_FALSE(b.keys.isGrabbed("Meta+K"));
  EXPECT_FALSE(b.binder.isBound("shortcutDictForDevice2"));
}

TEST(ShortcutBinder, KeysThatCannotWorkAreRefusedOrSaidWhy) {
  for (const char* bad : {"H", "Shift+H", "Ctrl+Alt", "Ctrl+A, Ctrl+B", "Hyper+H", ""}) {
    EXPECT_TRUE(ShortcutBinder::refusal(bad)) << bad;
  }
  for (const char* good : {"Ctrl+H", "Alt+Shift+1", "Meta+Space", "F12", "Ctrl++"}) {
    EXPECT_FALSE(ShortcutBinder::refusal(good)) << good;
  }

  test::CapturedLog log;
  Bindings b;
  b.keys.taken.insert("Ctrl+Alt+T");
  b.bindBoth();
  const auto refused = b.binder.setShortcut("shortcutDictForDevice2", "Ctrl+Alt+H");
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.failure().reason, "It is the shortcut of Headset already.");
  EXPECT_FALSE(b.binder.setShortcut("shortcutDictForDevice2", "K"));

  // Written from outside, the same keys twice: the second does nothing, and
  // says so, in the user's language to the user and in English to the log.
  installTranslator([](std::string_view english) -> std::optional<std::string> {
    if (english == "it is the shortcut of %@ already.") return "es ist bereits das Tastenkürzel von %@.";
    return std::nullopt;
  });
  b.defaults.setValue("shortcutDictForDevice2", SettingsValue::Dictionary{{"keySequence", "Ctrl+Alt+H"}});
  installTranslator(nullptr);
  EXPECT_EQ(b.binder.state("shortcutDictForDevice2").problem, "es ist bereits das Tastenkürzel von Headset.");
  EXPECT_TRUE(
      log.contains("The shortcut Ctrl+Alt+H for Keyboard does nothing: it is the shortcut of Headset already."));
  b.keys.press("Ctrl+Alt+H");
  EXPECT_EQ(b.headsetPresses, 1);
  EXPECT_EQ(b.keyboardPresses, 0);

  ASSERT_TRUE(b.binder.setShortcut("shortcutDictForDevice2", "Ctrl+Alt+T"));
  EXPECT_EQ(b.binder.state("shortcutDictForDevice2").problem, "Ctrl+Alt+T is taken by another program");
  EXPECT_TRUE(
      log.contains("The shortcut Ctrl+Alt+T for Keyboard does nothing: Ctrl+Alt+T is taken by another program"));

  SimGlobalKeys none;
  none.available = false;
  ShortcutBinder nowhere(b.defaults, none);
  nowhere.bindShortcut("shortcutDictForDevice1", "Headset", [] {});
  EXPECT_EQ(nowhere.state("shortcutDictForDevice1").problem, "this desktop offers programs no global shortcuts.");
}

} // namespace lb
