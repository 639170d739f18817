#pragma once

#include <string>
#include <string_view>

namespace lb {

// The text the user sees for `english`, which is the lookup key. On Linux a
// few texts read differently where the English names places that do not
// exist here.
std::string localized(std::string_view english);

// `format` with its first "%@" replaced by `argument`, and "%%" as "%".
std::string formatted(std::string_view format, std::string_view argument);

} // namespace lb
