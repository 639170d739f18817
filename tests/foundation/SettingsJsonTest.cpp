#include "foundation/SettingsJson.h"

#include <gtest/gtest.h>

namespace lb {

TEST(SettingsJson, RefusesWhatSettingsCannotHoldAndDescribesWhatTheyCan) {
  std::string error;
  for (std::string text :
       {"null", "[1, null]", "18446744073709551615", R"({"$data": "abc"})", R"({"$data": "zz"})", "{", "\"\xff\""}) {
    EXPECT_FALSE(SettingsJson::parse(text, error)) << text;
    EXPECT_FALSE(error.empty());
  }
  std::string deep(SettingsJson::maximumDepth + 2, '[');
  deep += std::string(SettingsJson::maximumDepth + 2, ']');
  EXPECT_FALSE(SettingsJson::parse(deep, error));
  EXPECT_EQ(error, "nesting too deep");
  EXPECT_FALSE(SettingsJson::isWritable(SettingsValue::Array{1.0 / 0.0}));

  // A value's description is stable, for log lines.
  SettingsValue devices = SettingsValue::Array{
      SettingsValue::Dictionary{{"icon", 3}, {"device", "00-11"}, {"on", true}, {"f", 0.25}}};
  EXPECT_EQ("Devices to load: " + devices.description(),
            R"(Devices to load: [["device": "00-11", "f": 0.25, "icon": 3, "on": true]])");
  EXPECT_EQ(SettingsValue("bare").description(), "bare");
  EXPECT_EQ(SettingsValue(SettingsValue::Data{0x0a, 0xff}).description(), "<0aff>");
  EXPECT_EQ(describe(std::nullopt), "nil");
}

} // namespace lb
