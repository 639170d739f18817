#include "core/Texts.h"

#include <gtest/gtest.h>

namespace lb {

namespace {

constexpr std::string_view reworded = "Your Mac could not connect to “%@”.";
constexpr std::string_view alsoReworded =
    "Please make sure that Bluetooth is enabled in the Bluetooth pane in System Settings.";

// A language that has one of the reworded texts.
std::optional<std::string> partlyGerman(std::string_view english, int count) {
  if (english == "about %n hours left") return count == 1 ? "noch etwa %n Stunde" : "noch etwa %n Stunden";
  if (english == reworded) return "Ihr Computer konnte keine Verbindung zu „%@“ herstellen.";
  return std::nullopt;
}

} // namespace

TEST(Texts, ATranslationIsLookedUpByTheKeyAndMissingOnesKeepTheLinuxWording) {
  EXPECT_EQ(localized(reworded), "Your computer could not connect to “%@”.");
  installTranslator(&partlyGerman);
  EXPECT_EQ(formatted(localized(reworded), "Lantern Buds"),
            "Ihr Computer konnte keine Verbindung zu „Lantern Buds“ herstellen.");
  EXPECT_EQ(localized(alsoReworded),
            "Please make sure that Bluetooth is turned on in your desktop’s Bluetooth settings.");
  EXPECT_EQ(localized("Quit"), "Quit");
  EXPECT_EQ(localized("about %n hours left", nullptr, 1), "noch etwa 1 Stunde");
  EXPECT_EQ(localized("about %n hours left", nullptr, 3), "noch etwa 3 Stunden");
  installTranslator(nullptr);
  EXPECT_EQ(localized("about %n hours left", nullptr, 1), "about 1 hour left");
  EXPECT_EQ(localized("about %n minutes left", nullptr, 12), "about 12 minutes left");
  EXPECT_EQ(localized(reworded), "Your computer could not connect to “%@”.");
  // Numbered arguments in the order the translation puts them; a number
  // without its argument, and a lone "%", stay as written.
  EXPECT_EQ(numbered("%2 bei %1 % (%3), 100%%", {"15", "Buds"}), "Buds bei 15 % (%3), 100%");
}

} // namespace lb
