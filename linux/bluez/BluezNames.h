#pragma once

// BlueZ's names on the system bus: its service, the interfaces of its
// objects, and the errors whose meaning the program acts on.
namespace lb::bluez {

inline constexpr const char* service = "org.bluez";
inline constexpr const char* adapterInterface = "org.bluez.Adapter1";
inline constexpr const char* deviceInterface = "org.bluez.Device1";
inline constexpr const char* batteryInterface = "org.bluez.Battery1";
inline constexpr const char* gattServiceInterface = "org.bluez.GattService1";
inline constexpr const char* gattCharacteristicInterface = "org.bluez.GattCharacteristic1";
inline constexpr const char* gattDescriptorInterface = "org.bluez.GattDescriptor1";

inline constexpr const char* errorFailed = "org.bluez.Error.Failed";
inline constexpr const char* errorAlreadyConnected = "org.bluez.Error.AlreadyConnected";
inline constexpr const char* errorDoesNotExist = "org.bluez.Error.DoesNotExist";
inline constexpr const char* errorNotReady = "org.bluez.Error.NotReady";

} // namespace lb::bluez
