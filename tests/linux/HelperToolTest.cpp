#include "linux/battery/HelperTool.h"
#include "linux/battery/PropertyList.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace lb {

using Dictionary = SettingsValue::Dictionary;

// The helper tool's answer read back: a real process printing a property
// list, one printing something else, and one that is not there.
TEST(HelperTool, TheAnswerIsTheParsedPropertyList) {
  test::TemporaryDirectory folder;
  auto helper = folder / "LanternbudHelperTool";
  const Dictionary answer{{"BatteryPercentLeft", 40}, {"BatteryPercentRight", 70.5}, {"Name", "Buds <&>"}};
  test::writeFile(helper, "#!/bin/sh\n[ \"$1\" = -PrintBatteryInfo ] && [ \"$2\" = AA:BB ] || exit 1\ncat <<'END'\n" +
                              PropertyList::xml(answer) + "END\n");
  std::filesystem::permissions(helper, std::filesystem::perms::owner_all);
  HelperTool tool(helper.string());
  EXPECT_EQ(tool.run("AA:BB"), SettingsValue(answer));
  EXPECT_THROW(tool.run("CC:DD"), std::runtime_error); // printed nothing

  test::writeFile(helper, "#!/bin/sh\necho 'not a list'\n");
  EXPECT_THROW(tool.run("AA:BB"), std::runtime_error);
  EXPECT_THROW(HelperTool((folder / "absent").string()).run("AA:BB"), std::runtime_error);
}

} // namespace lb
