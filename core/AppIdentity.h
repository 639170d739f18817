#pragma once

namespace lb {

// The program's reverse-DNS name: its D-Bus name and the like.
inline constexpr const char* bundleIdentifier = "org.lanternbud.Lanternbud";

} // namespace lb
