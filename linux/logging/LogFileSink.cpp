#include "linux/logging/LogFileSink.h"

#include "foundation/PXRLogger.h"
#include "foundation/AtomicFile.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace lb {

namespace {

// The file's lines without the oldest, so that at most `keep` bytes are left.
Result<> trimmed(const std::filesystem::path& path, std::size_t keep) {
  auto content = AtomicFile::read(path);
  if (!content) return Failure{"reading " + path.string() + " to trim it: " + content.failure().reason};
  if (auto written = AtomicFile::write(path, PXRLogger::trimmedLog(content.value(), keep), 0600); !written) {
    return Failure{"trimming " + path.string() + ": " + written.failure().reason};
  }
  return {};
}

int openForAppending(const std::filesystem::path& path) {
  return ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
}

} // namespace

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
    if (auto done = trimmed(path, PXRLogger::logFileLimit); !done) {
      error = done.failure().reason;
      return nullptr;
    }
  }
  int descriptor = openForAppending(path);
  if (descriptor < 0) {
    error = "opening " + path.string() + ": " + std::strerror(errno);
    return nullptr;
  }
  size = std::filesystem::file_size(path, sizeError);
  return std::shared_ptr<LogFileSink>(new LogFileSink(path, descriptor, sizeError ? 0 : size));
}

LogFileSink::~LogFileSink() {
  for (const auto& summary : repeats_.flush()) append(summary);
  ::close(descriptor_);
}

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
  for (const auto& kept : repeats_.take(line)) append(kept);
}

void LogFileSink::append(const LogLine& line) {
  // A failed write is dropped: logging never fails its caller.
  auto text = format(line);
  if (auto written = ::write(descriptor_, text.data(), text.size()); written > 0) size_ += written;
  if (size_ >= PXRLogger::logFileLimit) trim();
}

// Trimmed to three quarters of the limit, so that a busy log is read and
// written again once every 128 KiB, not at every line. The file is replaced:
// lines go to the new one. A failure leaves the file growing, and is tried
// again a limit later.
void LogFileSink::trim() {
  size_ = 0;
  if (!trimmed(path_, PXRLogger::logFileLimit / 4 * 3)) return;
  const int reopened = openForAppending(path_);
  if (reopened < 0) return;
  ::close(descriptor_);
  descriptor_ = reopened;
  std::error_code error;
  size_ = std::filesystem::file_size(path_, error);
}

} // namespace lb
