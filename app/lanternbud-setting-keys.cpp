// lanternbud-setting-keys: prints every setting key the program knows, one a
// line, for the build to make the shell completions from.
#include "core/SettingKeys.h"

#include <iostream>

int main() {
  for (auto key : lb::SettingKeys::all()) std::cout << key << "\n";
}
