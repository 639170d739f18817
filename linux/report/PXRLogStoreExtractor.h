#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

struct sd_journal;

namespace lb {

// Recent entries of the systemd journal, written out as text files for the
// diagnostic report: everything, the errors, and the program's own lines.
class PXRLogStoreExtractor {
public:
  // One journal entry, as much of it as a line shows.
  struct Entry {
    std::chrono::system_clock::time_point date;
    std::optional<int> priority; // syslog's 0 (emerg) to 7 (debug)
    std::string process;
    std::string sender;
    std::string subsystem;
    std::string message;
  };

  struct Options {
    // The journal files in this folder; none: the journal of this machine,
    // as much of it as the user may read.
    std::optional<std::filesystem::path> directory;
    // Whether the user may read the whole system's journal, which sets how
    // far back each file goes.
    bool accessToAllLogs = hasAccessToAllLogs();
    std::chrono::system_clock::time_point now = std::chrono::system_clock::now();
    // Applied to each line before it is written (masking addresses).
    std::function<std::string(std::string)> transform = [](std::string line) { return line; };
    const std::atomic<bool>* cancelled = nullptr;
  };

  // Opens the journal at `minutes` before `options.now`. Throws
  // std::runtime_error when it cannot be opened.
  PXRLogStoreExtractor(int minutes, const Options& options);
  ~PXRLogStoreExtractor();
  PXRLogStoreExtractor(const PXRLogStoreExtractor&) = delete;
  PXRLogStoreExtractor& operator=(const PXRLogStoreExtractor&) = delete;

  // Each writes its entries from the start on to `file`, one line each.
  // Throw std::runtime_error when the file cannot be written, and
  // ReportCancelled when the report is cancelled.
  void writeAllEntries(const std::filesystem::path& file);
  void writeErrorEntries(const std::filesystem::path& file); // err, crit, alert, emerg
  void writeOurEntries(const std::filesystem::path& file);   // PXR_CATEGORY=PXRLogger

  // "2026-11-24 09:41:07.250 e lanternbud (/usr/bin/lanternbud) [LogConnect] message",
  // the date in the local time zone.
  static std::string string(const Entry& entry);
  // The priority's level name: "fault", "error", "notice", "info", "debug";
  // "undefined" when the entry has none.
  static std::string pxrName(std::optional<int> priority);
  // Its first letter.
  static char pxrFixedWidthName(std::optional<int> priority);

  // Writes "Journal All.log", "Journal Errors.log" and "Journal App.log"
  // into `folder`; their paths in that order.
  static std::vector<std::filesystem::path> writeLogs(const std::filesystem::path& folder, const Options& options);
  // Whether this user may read the system's journal and not only their own.
  static bool hasAccessToAllLogs();

private:
  void write(const std::filesystem::path& file);
  Entry entry();

  sd_journal* journal_ = nullptr;
  const Options& options_;
};

} // namespace lb
