#include "linux/report/PXRLogStoreExtractor.h"

#include "foundation/Printing.h"
#include "linux/report/ReportCancelled.h"

#include <systemd/sd-journal.h>

#include <cstring>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

namespace lb {

namespace {

using namespace std::chrono;

std::string systemError(const std::string& what, int error) { return what + ": " + std::strerror(error); }

// The field's value, or "" when the entry has none.
std::string field(sd_journal* journal, const char* name) {
  const void* data = nullptr;
  std::size_t length = 0;
  if (sd_journal_get_data(journal, name, &data, &length) < 0) return {};
  std::string_view text(static_cast<const char*>(data), length);
  const auto equals = text.find('=');
  return equals == std::string_view::npos ? std::string() : std::string(text.substr(equals + 1));
}

std::string firstOf(sd_journal* journal, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (auto value = field(journal, name); !value.empty()) return value;
  }
  return {};
}

} // namespace

PXRLogStoreExtractor::PXRLogStoreExtractor(int minutes, const Options& options) : options_(options) {
  const int opened = options.directory ? sd_journal_open_directory(&journal_, options.directory->c_str(), 0)
                                       : sd_journal_open(&journal_, SD_JOURNAL_LOCAL_ONLY);
  if (opened < 0) throw std::runtime_error(systemError("cannot open the journal", -opened));
  const auto start = options.now - std::chrono::minutes(minutes);
  const auto usec = duration_cast<microseconds>(start.time_since_epoch()).count();
  if (const int sought = sd_journal_seek_realtime_usec(journal_, static_cast<std::uint64_t>(usec > 0 ? usec : 0));
      sought < 0) {
    sd_journal_close(journal_);
    throw std::runtime_error(systemError("cannot read the journal", -sought));
  }
}

PXRLogStoreExtractor::~PXRLogStoreExtractor() { sd_journal_close(journal_); }

void PXRLogStoreExtractor::writeAllEntries(const std::filesystem::path& file) { write(file); }

void PXRLogStoreExtractor::writeErrorEntries(const std::filesystem::path& file) {
  // Matches on one field are alternatives.
  for (const char* match : {"PRIORITY=0", "PRIORITY=1", "PRIORITY=2", "PRIORITY=3"})
    sd_journal_add_match(journal_, match, 0);
  write(file);
}

void PXRLogStoreExtractor::writeOurEntries(const std::filesystem::path& file) {
  sd_journal_add_match(journal_, "PXR_CATEGORY=PXRLogger", 0);
  write(file);
}

void PXRLogStoreExtractor::write(const std::filesystem::path& file) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  if (!out) throw std::runtime_error(systemError("cannot write " + file.string(), errno));
  const auto now = duration_cast<microseconds>(options_.now.time_since_epoch()).count();
  for (std::size_t count = 0;; ++count) {
    if (options_.cancelled && count % 256 == 0) throwIfCancelled(*options_.cancelled);
    const int next = sd_journal_next(journal_);
    if (next < 0) throw std::runtime_error(systemError("cannot read the journal", -next));
    if (next == 0) break;
    std::uint64_t usec = 0;
    // What was written after the report began belongs to the next one.
    if (sd_journal_get_realtime_usec(journal_, &usec) >= 0 && usec > static_cast<std::uint64_t>(now)) break;
    out << options_.transform(string(entry())) << '\n';
  }
  out.close();
  if (!out) throw std::runtime_error(systemError("cannot write " + file.string(), errno));
}

PXRLogStoreExtractor::Entry PXRLogStoreExtractor::entry() {
  Entry entry;
  std::uint64_t usec = 0;
  sd_journal_get_realtime_usec(journal_, &usec);
  entry.date = system_clock::time_point(duration_cast<system_clock::duration>(microseconds(usec)));
  if (auto priority = field(journal_, "PRIORITY"); priority.size() == 1 && priority[0] >= '0' && priority[0] <= '7')
    entry.priority = priority[0] - '0';
  entry.process = firstOf(journal_, {"SYSLOG_IDENTIFIER", "_COMM"});
  entry.sender = firstOf(journal_, {"_EXE", "_COMM"});
  entry.subsystem = firstOf(journal_, {"PXR_AREA", "_SYSTEMD_USER_UNIT", "_SYSTEMD_UNIT"});
  entry.message = field(journal_, "MESSAGE");
  return entry;
}

std::string PXRLogStoreExtractor::string(const Entry& entry) {
  const auto time = system_clock::to_time_t(entry.date);
  const auto milliseconds = duration_cast<std::chrono::milliseconds>(entry.date.time_since_epoch()).count() % 1000;
  std::tm local{};
  localtime_r(&time, &local);
  char date[40];
  const auto length = std::strftime(date, sizeof date, "%Y-%m-%d %H:%M:%S", &local);
  char fraction[8];
  std::snprintf(fraction, sizeof fraction, ".%03d", static_cast<int>(milliseconds));
  // One entry, one line, whatever any process wrote.
  return std::string(date, length) + fraction + ' ' + pxrFixedWidthName(entry.priority) + ' ' +
         pxrPrintable(entry.process + " (" + entry.sender + ") [" + entry.subsystem + "] " + entry.message);
}

std::string PXRLogStoreExtractor::pxrName(std::optional<int> priority) {
  if (!priority) return "undefined";
  switch (*priority) {
  case 0:
  case 1:
  case 2: return "fault";
  case 3: return "error";
  case 4:
  case 5: return "notice";
  case 6: return "info";
  case 7: return "debug";
  default: return "unknown-" + std::to_string(*priority);
  }
}

char PXRLogStoreExtractor::pxrFixedWidthName(std::optional<int> priority) { return pxrName(priority)[0]; }

std::vector<std::filesystem::path> PXRLogStoreExtractor::writeLogs(const std::filesystem::path& folder,
                                                                   const Options& options) {
  // Minutes back: a user who may read only their own journal gets less.
  const bool all = options.accessToAllLogs;
  std::vector<std::filesystem::path> files{folder / "Journal All.log", folder / "Journal Errors.log",
                                           folder / "Journal App.log"};
  PXRLogStoreExtractor(all ? 240 : 15, options).writeAllEntries(files[0]);
  PXRLogStoreExtractor(all ? 720 : 240, options).writeErrorEntries(files[1]);
  PXRLogStoreExtractor(all ? 1440 : 240, options).writeOurEntries(files[2]);
  return files;
}

bool PXRLogStoreExtractor::hasAccessToAllLogs() {
  // The system journal is readable by root and the groups systemd-journal
  // and adm; whoever can open one of its files may read them all.
  for (const char* root : {"/var/log/journal", "/run/log/journal"}) {
    std::error_code error;
    for (const auto& machine : std::filesystem::directory_iterator(root, error)) {
      if (access((machine.path() / "system.journal").c_str(), R_OK) == 0) return true;
    }
  }
  return false;
}

} // namespace lb
