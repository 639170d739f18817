#include "linux/xdg/XdgAutostart.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sstream>

#include <sys/stat.h>

namespace lb {

// The entry is the installed desktop entry, so that the session shows the
// same name and icon, but it starts the program that wrote it.
TEST(XdgAutostart, EnablingWritesTheInstalledEntryStartingThisProgramAndDisablingRemovesIt) {
  test::TemporaryDirectory config;
  auto file = config / "autostart/lanternbud.desktop";
  XdgAutostart autostart(file, "/opt/my apps/lanternbud");
  ASSERT_TRUE(autostart.setEnabled(true));
  const auto entry = "\n" + test::readFile(file);
  std::istringstream installed{std::string(XdgAutostart::desktopEntry)};
  for (std::string line; std::getline(installed, line);) {
    EXPECT_EQ(entry.find("\n" + line + "\n") != std::string::npos, !line.starts_with("Exec=")) << line << entry;
  }
  for (auto line : {"Exec=\"/opt/my apps/lanternbud\"", "X-GNOME-Autostart-enabled=true"}) {
    EXPECT_NE(entry.find("\n" + std::string(line) + "\n"), std::string::npos) << entry;
  }
  // What the desktop entry rules reserve is quoted.
  EXPECT_NE(XdgAutostart::entry("/home/x/$bin/100%/a\"b").find(R"(Exec="/home/x/\\$bin/100%%/a\\"b")"),
            std::string::npos);
  struct stat info {};
  ASSERT_EQ(stat(file.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0644u);
  test::writeFile(config / "blocked", "a file where the folder should be");
  EXPECT_FALSE(XdgAutostart(config / "blocked/lanternbud.desktop", "/usr/bin/lanternbud").setEnabled(true));

  EXPECT_TRUE(autostart.setEnabled(false));
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_TRUE(autostart.setEnabled(false)); // already off
}

} // namespace lb
