#pragma once

#include <functional>

namespace lb::test {

// Runs Qt's event loop until `done` holds or `seconds` pass; whether it held.
// Where news comes by no Qt event (a file, a child process, a server's
// thread), a short timer wakes the loop to look again. The bound only
// catches a hang: no test waits it out to show that something did not happen.
bool waitUntil(const std::function<bool()>& done, double seconds = 10);

} // namespace lb::test
