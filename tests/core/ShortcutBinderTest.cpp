#include "core/ShortcutBinder.h"
#include "sim/InMemorySettingsStore.h"
#include "sim/SimGlobalKeys.h"

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
}

TEST(ShortcutBinder, KeysThatCannotWorkAreRefusedOrSaidWhy) {
  for (const char* bad : {"H", "Shift+H", "Ctrl+Alt", "Ctrl+A, Ctrl+B", "Hyper+H", ""}) {
    EXPECT_TRUE(ShortcutBinder::refusal(bad)) << bad;
  }
  for (const char* good : {"Ctrl+H", "Alt+Shift+1", "Meta+Space", "F12", "Ctrl++"}) {
    EXPECT_FALSE(ShortcutBinder::refusal(good)) << good;
  }

  Bindings b;
  b.keys.taken.insert("Ctrl+Alt+T");
  b.bindBoth();
  const auto refused = b.binder.setShortcut("shortcutDictForDevice2", "Ctrl+Alt+H");
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.failure().reason, "It is the shortcut of Headset already.");

  // Written from outside, the same keys twice: the second does nothing, and
  // says why.
  b.defaults.setValue("shortcutDictForDevice2", SettingsValue::Dictionary{{"keySequence", "Ctrl+Alt+H"}});
  EXPECT_EQ(b.binder.state("shortcutDictForDevice2").problem, "it is the shortcut of Headset already.");
  b.keys.press("Ctrl+Alt+H");
  EXPECT_EQ(b.headsetPresses, 1);
  EXPECT_EQ(b.keyboardPresses, 0);

  ASSERT_TRUE(b.binder.setShortcut("shortcutDictForDevice2", "Ctrl+Alt+T"));
  EXPECT_EQ(b.binder.state("shortcutDictForDevice2").problem, "Ctrl+Alt+T is taken by another program");
  b.keys.available = false;
  b.binder.bindShortcut("shortcutDictForDevice1", "Headset", [] {});
  EXPECT_EQ(b.binder.state("shortcutDictForDevice1").problem, "this desktop offers programs no global shortcuts.");
}

} // namespace lb
