#include "foundation/AtomicFile.h"

#include "foundation/FaultPoint.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lb {

namespace {

std::string reason(const char* step, int error) { return std::string(step) + ": " + std::strerror(error); }

bool writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    ssize_t written = ::write(descriptor, content.data(), content.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

} // namespace

Result<> AtomicFile::write(const std::filesystem::path& path, std::string_view content, mode_t mode) {
  std::string temporary = (path.parent_path() / (temporaryPrefix(path.filename().string()) + "XXXXXX")).string();
  int descriptor = mkstemp(temporary.data());
  if (descriptor < 0) return Failure{reason("creating a temporary file", errno)};

  auto fail = [&](const char* step) {
    int error = errno;
    if (descriptor >= 0) ::close(descriptor);
    ::unlink(temporary.c_str());
    return Failure{reason(step, error)};
  };
  if (fchmod(descriptor, mode) != 0) return fail("setting permissions");
  if (!writeAll(descriptor, content)) return fail("writing");
  if (fsync(descriptor) != 0) return fail("flushing to disk");
  if (::close(descriptor) != 0) {
    descriptor = -1;
    return fail("closing");
  }
  descriptor = -1;
  faultPoint("before-rename");
  if (std::rename(temporary.c_str(), path.c_str()) != 0) return fail("renaming into place");

  // The rename itself lives in the directory; flush that too.
  int directory = ::open(path.parent_path().empty() ? "." : path.parent_path().c_str(),
                         O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (directory >= 0) {
    fsync(directory);
    ::close(directory);
  }
  return {};
}

Result<std::string> AtomicFile::read(const std::filesystem::path& path) {
  // Without blocking: a FIFO put in a file's place would wait for a writer.
  int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return Failure{std::strerror(errno)};
  struct stat info {};
  if (fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) {
    ::close(descriptor);
    return Failure{"not a regular file"};
  }
  std::string content;
  char buffer[65536];
  for (;;) {
    ssize_t got = ::read(descriptor, buffer, sizeof buffer);
    if (got == 0) break;
    if (got < 0) {
      if (errno == EINTR) continue;
      int error = errno; // a folder in the file's place says EISDIR here
      ::close(descriptor);
      return Failure{std::strerror(error)};
    }
    content.append(buffer, static_cast<std::size_t>(got));
  }
  ::close(descriptor);
  return content;
}

} // namespace lb
