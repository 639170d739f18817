#include "linux/report/LinuxDiagnosticReporter.h"

#include "foundation/BluetoothAddress.h"
#include "foundation/PXRLog.h"
#include "foundation/Translatable.h"
#include "linux/logging/OurLogFile.h"
#include "linux/report/BluetoothSystemState.h"
#include "linux/report/PXRDiagnosticReporter.h"
#include "linux/report/ReportCancelled.h"
#include "linux/report/SoundServerState.h"
#include "linux/xdg/XdgBatteryHistoryFiles.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace lb {

namespace {

// A folder of its own for the journal's extracts, removed with everything
// in it.
class TemporaryFolder {
public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "lanternbud-report-XXXXXX").string();
    if (mkdtemp(pattern.data())) path_ = pattern;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  const std::filesystem::path& path() const { return path_; } // empty when none could be made

private:
  std::filesystem::path path_;
};

std::optional<std::string> contents(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

} // namespace

LinuxDiagnosticReporter::Sources LinuxDiagnosticReporter::Sources::thisMachine() {
  return {{OurLogFile::path("lanternbud"), OurLogFile::path("LanternbudHelperTool")},
          XdgBatteryHistoryFiles::folderNamed("battery-history"),
          "/etc/bluetooth/main.conf",
          std::nullopt,
          std::nullopt};
}

Result<void> LinuxDiagnosticReporter::saveReport(const std::filesystem::path& destination, bool maskAddresses,
                                                 const Progress& progress, const std::atomic<bool>& cancelled) {
  const auto masked = [maskAddresses](std::string text) {
    return maskAddresses ? BluetoothAddress::masked(text) : text;
  };
  constexpr int steps = 5;
  std::vector<PXRDiagnosticReporter::Item> items;
  try {
    progress(0, steps, std::string(translatable("Collecting the log files")));
    // A log file that is not there (the helper never ran) is left out.
    for (const auto& file : sources_.logFiles) {
      if (auto text = contents(file)) items.push_back({file.filename().string(), masked(pxrPrintableLines(*text)), {}});
    }
    // Named by the device's address, which is masked like the rest.
    std::error_code absent;
    for (const auto& entry : std::filesystem::directory_iterator(sources_.batteryHistories, absent)) {
      if (entry.path().extension() != ".json") continue;
      if (auto text = contents(entry.path()))
        items.push_back({masked("Battery History " + entry.path().filename().string()), masked(*text), {}});
    }
    throwIfCancelled(cancelled);
    progress(1, steps, std::string(translatable("Asking BlueZ about the adapters and paired devices")));
    items.push_back({"Bluetooth.txt",
                     masked(BluetoothSystemState::describe(sources_.systemBus ? *sources_.systemBus
                                                                              : QDBusConnection::systemBus())),
                     {}});
    if (auto config = contents(sources_.bluetoothConfig)) items.push_back({"main.conf", masked(*config), {}});
    throwIfCancelled(cancelled);
    progress(2, steps, std::string(translatable("Asking the sound server about its devices")));
    items.push_back({"Sound.txt", masked(SoundServerState::describe(cancelled)), {}});

    progress(3, steps, std::string(translatable("Reading the journal")));
    TemporaryFolder journalFolder;
    if (!journalFolder.path().empty()) {
      PXRLogStoreExtractor::Options options;
      options.directory = sources_.journal;
      options.transform = masked;
      options.cancelled = &cancelled;
      try {
        for (const auto& file : PXRLogStoreExtractor::writeLogs(journalFolder.path(), options))
          items.push_back({file.filename().string(), {}, file});
      } catch (const std::runtime_error& error) {
        PXR_LOG_ERROR(std::string("Error extracting Journal: ") + error.what());
      }
    }
    // What went to standard error reaches the log file before it is read.
    std::fflush(stderr);
    progress(4, steps, std::string(translatable("Writing the report")));
    PXRDiagnosticReporter::saveReport(destination, items, cancelled);
    progress(steps, steps, "Done");
    return {};
  } catch (const ReportCancelled&) {
    return Failure{"cancelled"};
  } catch (const std::exception& error) {
    PXR_LOG_ERROR(std::string("Error saving diagnostic report: ") + error.what());
    return Failure{error.what()};
  }
}

} // namespace lb
