#include "ports/IOReturn.h"

#include <gtest/gtest.h>

namespace lb {

TEST(IOReturn, FieldsTestsAndDescription) {
  IOReturn timeout{static_cast<std::int32_t>(0xE00002D6), ""};
  EXPECT_EQ(pxrDescription(timeout),
            "IOReturn -536870186 (56=0x38=err_sys, 0=0x0=sub_iokit_common, 726=0x2d6=kIOReturnTimeout)");
  EXPECT_TRUE(pxrIsBluetoothTimeout(timeout));
  EXPECT_TRUE(pxrIsPossiblySpuriousBluetoothTimeout(timeout));
  EXPECT_FALSE(pxrIsSuccess(timeout));

  auto page = IOReturn::make(IOReturn::Code::kBluetoothHCIErrorPageTimeout, "br-connection-page-timeout");
  EXPECT_TRUE(pxrIsBluetoothTimeout(page));
  EXPECT_FALSE(pxrIsPossiblySpuriousBluetoothTimeout(page));
  EXPECT_EQ(pxrDescription(page), "IOReturn -536739836 (56=0x38=err_sys, 8=0x8=sub_iokit_bluetooth, "
                                  "4=0x4=kBluetoothHCIErrorPageTimeout): br-connection-page-timeout");

  IOReturn odd{0x12345, ""}; // no known field values
  EXPECT_EQ(pxrDescription(odd), "IOReturn 74565 (0, 4, 9029)");
  EXPECT_TRUE(pxrIsSuccess(IOReturn::success()));
  EXPECT_TRUE(pxrIsBluetoothOffline(IOReturn::make(IOReturn::Code::kIOReturnOffline)));
  EXPECT_TRUE(pxrIsBluetoothAlreadyConnected(IOReturn{11, ""})); // only the code field counts
}

} // namespace lb
