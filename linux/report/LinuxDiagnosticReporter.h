#pragma once

#include "linux/report/PXRLogStoreExtractor.h"
#include "ports/DiagnosticReporter.h"

#include <QDBusConnection>

#include <filesystem>
#include <vector>

namespace lb {

// The diagnostic report on Linux: the program's and the helper's log files,
// BlueZ's adapters and paired devices with /etc/bluetooth/main.conf, the
// sound server's devices and cards, three extracts of the journal, and each
// device's battery history.
class LinuxDiagnosticReporter final : public DiagnosticReporter {
public:
  // Where the report's parts are read from.
  struct Sources {
    std::vector<std::filesystem::path> logFiles;
    // The folder of the battery histories, one file per device.
    std::filesystem::path batteryHistories;
    std::filesystem::path bluetoothConfig;
    // The journal folder; none: this machine's journal.
    std::optional<std::filesystem::path> journal;
    // Where BlueZ answers; none: the system bus, reached only when a
    // report is made.
    std::optional<QDBusConnection> systemBus;

    // This machine's: the log files and histories in the user's state
    // folder, the system bus.
    static Sources thisMachine();
  };

  explicit LinuxDiagnosticReporter(Sources sources) : sources_(std::move(sources)) {}

  Result<void> saveReport(const std::filesystem::path& destination, bool maskAddresses, const Progress& progress,
                          const std::atomic<bool>& cancelled) override;

private:
  Sources sources_;
};

} // namespace lb
