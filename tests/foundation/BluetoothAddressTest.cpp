#include "foundation/BluetoothAddress.h"

#include <gtest/gtest.h>

namespace lb {

TEST(BluetoothAddress, ReadsTheUsualFormsWritesBlueZsAndFindsAndMasksThemInText) {
  for (auto text : {"aa:bb:cc:dd:ee:0f", "AA-BB-CC-DD-EE-0F", "aa_bb_cc_dd_ee_0f"}) {
    auto address = BluetoothAddress::parse(text);
    ASSERT_TRUE(address) << text;
    EXPECT_EQ(address->toString(), "AA:BB:CC:DD:EE:0F");
  }
  for (auto text : {"", "AA:BB:CC:DD:EE", "AA:BB:CC:DD:EE:0F:", "AA:BB-CC:DD:EE:0F", "AA:BB:CC:DD:EE:0G", "aa"}) {
    EXPECT_FALSE(BluetoothAddress::parse(text)) << text;
  }
  EXPECT_TRUE(sameBluetoothAddress("00-11-22-33-44-55", "00:11:22:33:44:55"));
  EXPECT_FALSE(sameBluetoothAddress("00-11-22-33-44-55", "00:11:22:33:44:56"));
  EXPECT_FALSE(sameBluetoothAddress("x", "x")); // no address is the same as nothing

  // The first address in a longer text is found.
  auto found = [](const char* text) {
    auto address = BluetoothAddress::findIn(text);
    return address ? address->toString() : "";
  };
  EXPECT_EQ(found("/org/bluez/hci0/dev_aa_bb_cc_dd_ee_0f"), "AA:BB:CC:DD:EE:0F");
  EXPECT_EQ(found("hid-f0:99:b6:11:22:33-battery"), "F0:99:B6:11:22:33");
  EXPECT_EQ(found("bluez_sink.00_1D_43_A0_00_02.a2dp_sink 00:1D:43:A0:00:02"), "00:1D:43:A0:00:02");
  EXPECT_EQ(found("BAT0"), "");
  EXPECT_EQ(found("hid-f0:99:b6_11:22:33-battery"), ""); // mixed separators
  EXPECT_EQ(found("ps-controller-battery-a0:5a:5c:01:02:3"), "");

  // Masking hides the second half of every address in a text.
  EXPECT_EQ(BluetoothAddress::masked("Connected 00:1B:66:AA:BB:CC and f0-99-b6-11-22-33."),
            "Connected 00:1B:66:XX:XX:XX and f0-99-b6-XX-XX-XX.");
  EXPECT_EQ(BluetoothAddress::masked("/org/bluez/hci0/dev_00_1B_66_AA_BB_CC/service0001"),
            "/org/bluez/hci0/dev_00_1B_66_XX_XX_XX/service0001");
  EXPECT_EQ(BluetoothAddress::masked("00:1B:66:AA:BB:CC"), "00:1B:66:XX:XX:XX");
  EXPECT_EQ(BluetoothAddress::masked("Speaker 001D43A00002, 001d43a00002"), "Speaker 001D43XXXXXX, 001d43XXXXXX");
  // Hexadecimal that only looks like an address in part stays as it is.
  for (auto text : {"key 3f00:1B:66:AA:BB:CC", "00:1B:66:AA:BB:CCe", "AA:BB-CC:DD:EE:0F", "0000110b-0000-1000",
                    "hash 0001D43A00002f"}) {
    EXPECT_EQ(BluetoothAddress::masked(text), text);
  }
}

} // namespace lb
