#pragma once

#include <atomic>
#include <string>

namespace lb {

// What the sound server is, for the diagnostic report: its name and
// version, the default sink and source, every sink and source, and every
// card with its profiles and the active one. Asks the server on a
// connection of its own, from the calling thread, for a few seconds at most.
struct SoundServerState {
  static std::string describe(const std::atomic<bool>& cancelled);
};

} // namespace lb
