#pragma once

#include "foundation/Result.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>

namespace lb {

// The diagnostic report a user sends to support: the program's logs, the
// system journal, and what the Bluetooth and sound systems were doing, in
// one archive.
class DiagnosticReporter {
public:
  // Tells how far the work has come: steps done of all steps, and what runs
  // now, in English for the one lookup. Called on the thread that saves.
  using Progress = std::function<void(int done, int total, const std::string& what)>;

  virtual ~DiagnosticReporter() = default;

  // Writes the report to `destination`, whole or not at all: a failed or
  // cancelled report leaves nothing behind. With `maskAddresses`, every
  // Bluetooth address in it keeps only its first half. Blocks for seconds:
  // for a worker thread, which may be stopped by setting `cancelled`.
  virtual Result<void> saveReport(const std::filesystem::path& destination, bool maskAddresses,
                                  const Progress& progress, const std::atomic<bool>& cancelled) = 0;
};

} // namespace lb
