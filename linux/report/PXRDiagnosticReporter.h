#pragma once

#include <atomic>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lb {

// Packs a diagnostic report: one .tar.gz whose files sit in one folder
// named as the archive. The archive is written beside its destination
// under a passing name and renamed into place when whole, so that no
// half-written report is ever left under the chosen name.
class PXRDiagnosticReporter {
public:
  // A file of the report: its text, or a file on disk copied as it is.
  struct Item {
    std::string name;
    std::string text;
    std::optional<std::filesystem::path> file;
  };

  // Throws std::runtime_error when it cannot be written, and
  // ReportCancelled when cancelled; either way nothing is left.
  static void saveReport(const std::filesystem::path& destination, const std::vector<Item>& items,
                         const std::atomic<bool>& cancelled);
  // "Lanternbud Report" for "…/Lanternbud Report.tar.gz".
  static std::string folderName(const std::filesystem::path& destination);
};

} // namespace lb
