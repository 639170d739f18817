// libFuzzer target over the settings file reader: whatever the bytes, parsing
// returns a value or an error, and a value survives writing and reading back.
#include "foundation/SettingsJson.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string error;
  auto value = lb::SettingsJson::parse(std::string_view(reinterpret_cast<const char*>(data), size), error);
  if (!value || !lb::SettingsJson::isWritable(*value)) return 0;
  auto again = lb::SettingsJson::parse(lb::SettingsJson::write(*value), error);
  if (!again || !(*again == *value)) std::abort();
  return 0;
}
