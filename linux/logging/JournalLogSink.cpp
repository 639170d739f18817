#define SD_JOURNAL_SUPPRESS_LOCATION
#include "linux/logging/JournalLogSink.h"

#include <filesystem>
#include <sys/uio.h>
#include <systemd/sd-journal.h>
#include <vector>

namespace lb {

std::shared_ptr<JournalLogSink> JournalLogSink::ifReachable(std::string identifier) {
  std::error_code error;
  if (!std::filesystem::is_socket(socketPath, error)) return nullptr;
  return std::make_shared<JournalLogSink>(std::move(identifier));
}

void JournalLogSink::write(const LogLine& line) {
  // Errors at priority 3 (err), area lines at 7 (debug): areas are switched
  // on to trace, not to alarm.
  std::vector<std::string> fields{
      "MESSAGE=" + line.message,          line.area ? "PRIORITY=7" : "PRIORITY=3",
      "CODE_FILE=" + line.file,           "CODE_LINE=" + std::to_string(line.line),
      "CODE_FUNC=" + line.function,       "PXR_CATEGORY=PXRLogger",
      "SYSLOG_IDENTIFIER=" + identifier_,
  };
  if (line.area) fields.push_back("PXR_AREA=" + *line.area);
  std::vector<iovec> vectors;
  for (auto& field : fields) vectors.push_back({field.data(), field.size()});
  // A journal that went away costs this line only.
  sd_journal_sendv(vectors.data(), static_cast<int>(vectors.size()));
}

} // namespace lb
