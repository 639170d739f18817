#pragma once

#include "tests/support/PrivateBus.h"
#include "tests/support/PulseServer.h"

#include <cstdio>

namespace lb::test {

// What a benchmark of the whole program runs against: BlueZ's model with one
// adapter on a private system bus, a private session bus and a PulseAudio
// server of its own.
struct ProgramServices {
  PrivateBus system;
  PrivateBus session{PrivateBus::Kind::session};
  PulseServer pulse;

  // Starts the BlueZ model; false, saying why on standard error, when a
  // service is missing.
  bool ready() {
    if (system.skipReason().empty()) system.startBluez();
    for (const auto* reason : {&system.skipReason(), &session.skipReason(), &pulse.skipReason()}) {
      if (!reason->empty()) {
        std::fprintf(stderr, "cannot run: %s\n", reason->c_str());
        return false;
      }
    }
    system.bluez("/", "org.bluez.Mock", "AddAdapter", {"hci0", "benchmark"});
    return true;
  }
};

} // namespace lb::test
