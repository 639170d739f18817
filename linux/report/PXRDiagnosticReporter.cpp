#include "linux/report/PXRDiagnosticReporter.h"

#include "linux/report/ReportCancelled.h"

#include <archive.h>
#include <archive_entry.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

namespace lb {

namespace {

using Archive = std::unique_ptr<archive, decltype(&archive_write_free)>;
using ArchiveEntry = std::unique_ptr<archive_entry, decltype(&archive_entry_free)>;

std::runtime_error archiveError(archive* writer) {
  const char* message = archive_error_string(writer);
  return std::runtime_error(message ? message : "cannot write the archive");
}

void writeData(archive* writer, const char* data, std::size_t size) {
  if (size > 0 && archive_write_data(writer, data, size) < 0) throw archiveError(writer);
}

void add(archive* writer, const std::string& folder, const PXRDiagnosticReporter::Item& item,
         const std::atomic<bool>& cancelled) {
  std::ifstream file;
  std::uintmax_t size = item.text.size();
  if (item.file) {
    file.open(*item.file, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + item.file->string() + ": " + std::strerror(errno));
    size = std::filesystem::file_size(*item.file);
  }
  ArchiveEntry entry(archive_entry_new(), archive_entry_free);
  archive_entry_set_pathname(entry.get(), (folder + "/" + item.name).c_str());
  archive_entry_set_filetype(entry.get(), AE_IFREG);
  archive_entry_set_perm(entry.get(), 0644);
  archive_entry_set_size(entry.get(), static_cast<la_int64_t>(size));
  archive_entry_set_mtime(entry.get(), std::time(nullptr), 0);
  if (archive_write_header(writer, entry.get()) != ARCHIVE_OK) throw archiveError(writer);
  if (!item.file) return writeData(writer, item.text.data(), item.text.size());
  // The size is fixed in the header: a file that grows meanwhile is cut there.
  char buffer[1 << 16];
  for (std::uintmax_t left = size; left > 0;) {
    throwIfCancelled(cancelled);
    file.read(buffer, static_cast<std::streamsize>(std::min<std::uintmax_t>(left, sizeof buffer)));
    const auto got = static_cast<std::size_t>(file.gcount());
    if (got == 0) throw std::runtime_error(item.file->string() + " became shorter while it was read");
    writeData(writer, buffer, got);
    left -= got;
  }
}

} // namespace

std::string PXRDiagnosticReporter::folderName(const std::filesystem::path& destination) {
  auto name = destination.filename().string();
  for (std::string ending : {".tar.gz", ".tgz"}) {
    if (name.size() > ending.size() && name.ends_with(ending)) return name.substr(0, name.size() - ending.size());
  }
  return name;
}

void PXRDiagnosticReporter::saveReport(const std::filesystem::path& destination, const std::vector<Item>& items,
                                       const std::atomic<bool>& cancelled) {
  // A device node or a folder is never replaced by the report.
  std::error_code statusError;
  const auto type = std::filesystem::status(destination, statusError).type();
  if (type != std::filesystem::file_type::not_found && type != std::filesystem::file_type::regular) {
    throw std::runtime_error(destination.string() + " exists and is not a file; choose a file name");
  }
  auto folder = destination.parent_path();
  if (folder.empty()) folder = ".";
  // Within the longest name the folder takes, whatever the report's own.
  constexpr std::size_t marks = std::string_view("..partial-XXXXXX").size();
  const auto name = destination.filename().string().substr(0, NAME_MAX - marks);
  std::string partial = (folder / ("." + name + ".partial-XXXXXX")).string();
  int fd = mkstemp(partial.data());
  if (fd < 0) throw std::runtime_error("cannot write to " + folder.string() + ": " + std::strerror(errno));
  try {
    Archive writer(archive_write_new(), archive_write_free);
    if (archive_write_add_filter_gzip(writer.get()) != ARCHIVE_OK ||
        archive_write_set_format_pax_restricted(writer.get()) != ARCHIVE_OK ||
        archive_write_open_fd(writer.get(), fd) != ARCHIVE_OK)
      throw archiveError(writer.get());
    for (const auto& item : items) {
      throwIfCancelled(cancelled);
      add(writer.get(), folderName(destination), item, cancelled);
    }
    if (archive_write_close(writer.get()) != ARCHIVE_OK) throw archiveError(writer.get());
    // Left as mkstemp makes it, for its owner only: logs say much of a person.
    const bool written = fsync(fd) == 0;
    const int error = errno;
    const bool closed = close(fd) == 0;
    fd = -1;
    if (!written || !closed) throw std::runtime_error(std::string("cannot write: ") + std::strerror(error));
    if (std::rename(partial.c_str(), destination.c_str()) != 0)
      throw std::runtime_error("cannot write " + destination.string() + ": " + std::strerror(errno));
  } catch (...) {
    if (fd >= 0) close(fd);
    unlink(partial.c_str());
    throw;
  }
}

} // namespace lb
