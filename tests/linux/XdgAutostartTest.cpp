#include "linux/system/IcuNameCollator.h"
#include "linux/xdg/XdgAutostart.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace lb {

TEST(XdgAutostart, EnablingWritesAnEntryThatStartsTheProgramAndDisablingRemovesIt) {
  test::TemporaryDirectory config;
  auto file = config / "autostart/lanternbud.desktop";
  XdgAutostart autostart(file, "/opt/my apps/lanternbud");
  EXPECT_TRUE(autostart.setEnabled(true));
  auto entry = test::readFile(file);
  EXPECT_EQ(entry.rfind("[Desktop Entry]\n", 0), 0u);
  EXPECT_NE(entry.find("\nExec=\"/opt/my apps/lanternbud\"\n"), std::string::npos) << entry;
  struct stat info {};
  stat(file.c_str(), &info);
  EXPECT_EQ(info.st_mode & 0777, 0644u);

  EXPECT_TRUE(autostart.setEnabled(false));
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_TRUE(autostart.setEnabled(false)); // already off
}

TEST(XdgAutostart, ExecQuotesWhatTheDesktopEntryRulesReserve) {
  auto entry = XdgAutostart::entry("/home/x/$bin/100%/a\"b");
  EXPECT_NE(entry.find(R"(Exec="/home/x/\\$bin/100%%/a\\"b")"), std::string::npos) << entry;
}

TEST(XdgAutostart, AFolderThatCannotBeMadeIsARefusal) {
  test::TemporaryDirectory config;
  test::writeFile(config / "autostart", "a file where the folder should be");
  XdgAutostart autostart(config / "autostart/lanternbud.desktop", "/usr/bin/lanternbud");
  EXPECT_FALSE(autostart.setEnabled(true));
}

TEST(IcuNameCollator, IgnoresCaseButNotLettersAndOrdersAccentsWithTheirBase) {
  IcuNameCollator collator;
  EXPECT_EQ(collator.compare("Alpha", "alpha"), 0);
  EXPECT_LT(collator.compare("alpha", "Beta"), 0);
  EXPECT_LT(collator.compare("Ärmel Buds", "Zebra Speaker"), 0); // a byte order would put Ä last
  EXPECT_NE(collator.compare("Émile", "emile"), 0);
}

} // namespace lb
