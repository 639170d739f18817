#pragma once

#include <string_view>

namespace lb {

// Marks a text that the user sees translated once it reaches the one lookup
// (core's localized()), where it is written in a layer that cannot look it up
// itself, or is also used in English (a log line): the tools that gather the
// texts to translate find it here.
constexpr std::string_view translatable(std::string_view english) { return english; }

} // namespace lb
