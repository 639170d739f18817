#include "linux/logging/LogFileSink.h"

#include "foundation/PXRLogger.h"
#include "foundation/AtomicFile.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace lb {

std::shared_ptr<LogFileSink> LogFileSink::open(const std::filesystem::path& path, std::string& error) {
  std::error_code directoryError;
  std::filesystem::create_directories(path.parent_path(), directoryError);
  if (directoryError) {
    error = "creating " + path.parent_path().string() + ": " + directoryError.message();
    return nullptr;
  }
  std::error_code sizeError;
  auto size = std::filesystem::file_size(path, sizeError);
  if (!sizeError && size >= PXRLogger::logFileLimit) {
    auto content = AtomicFile::read(path);
    if (!content) {
      error = "reading " + path.string() + " to trim it: " + content.failure().reason;
      return nullptr;
    }
    if (auto written = AtomicFile::write(path, PXRLogger::trimmedLog(content.value()), 0600); !written) {
      error = "trimming " + path.string() + ": " + written.failure().reason;
      return nullptr;
    }
  }
  int descriptor = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  if (descriptor < 0) {
    error = "opening " + path.string() + ": " + std::strerror(errno);
    return nullptr;
  }
  return std::shared_ptr<LogFileSink>(new LogFileSink(descriptor));
}

LogFileSink::~LogFileSink() { ::close(descriptor_); }

std::string LogFileSink::format(const LogLine& line) {
  auto since = line.time.time_since_epoch();
  std::time_t seconds = std::chrono::duration_cast<std::chrono::seconds>(since).count();
  auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(since).count() % 1000;
  std::tm local{};
  localtime_r(&seconds, &local);
  char stamp[40];
  auto length = std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);
  std::snprintf(stamp + length, sizeof stamp - length, ".%03d", static_cast<int>(milliseconds));

  std::string text = stamp;
  text += line.area ? " [" + *line.area + "] " : " [error] ";
  text += line.file + ":" + std::to_string(line.line) + " " + line.function + ": " + line.message;
  text += '\n';
  return text;
}

void LogFileSink::write(const LogLine& line) {
  // A failed write is dropped: logging never fails its caller.
  auto text = format(line);
  [[maybe_unused]] auto written = ::write(descriptor_, text.data(), text.size());
}

} // namespace lb
