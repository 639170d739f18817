#include "linux/system/IcuNameCollator.h"
#include "linux/xdg/XdgAutostart.h"
#include "tests/support/RequireService.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

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

// The session shows the entry as the installed program, by the same name and
// icon, but starts the program that wrote it; the desktop's own validator
// takes it.
TEST(XdgAutostart, TheEntryIsTheInstalledDesktopEntryStartingThisProgram) {
  const std::string program = "/opt/my apps/lanternbud";
  const auto entry = XdgAutostart::entry(program);
  std::istringstream installed{std::string(XdgAutostart::desktopEntry)};
  int copied = 0;
  for (std::string line; std::getline(installed, line);) {
    if (line.starts_with("Exec=")) {
      EXPECT_EQ(entry.find("\n" + line + "\n"), std::string::npos) << entry;
      continue;
    }
    EXPECT_NE(entry.find(line + "\n"), std::string::npos) << line << " is missing from\n" << entry;
    ++copied;
  }
  EXPECT_GE(copied, 5);
  EXPECT_NE(entry.find("\nIcon=lanternbud\n"), std::string::npos) << entry;
  EXPECT_NE(entry.find("\nX-GNOME-Autostart-enabled=true\n"), std::string::npos) << entry;

  test::TemporaryDirectory config;
  ASSERT_TRUE(XdgAutostart(config / "lanternbud.desktop", program).setEnabled(true));
  LB_REQUIRE_SERVICE(std::system("command -v desktop-file-validate > /dev/null") == 0
                         ? ""
                         : "desktop-file-validate (desktop-file-utils) is not installed");
  const auto command = "desktop-file-validate '" + (config / "lanternbud.desktop").string() + "' 2>&1";
  std::string output;
  FILE* validator = popen(command.c_str(), "r");
  ASSERT_NE(validator, nullptr);
  char buffer[256];
  while (auto n = fread(buffer, 1, sizeof buffer, validator)) output.append(buffer, n);
  EXPECT_EQ(pclose(validator), 0) << output;
  EXPECT_EQ(output, "");
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
