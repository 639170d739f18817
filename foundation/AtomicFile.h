#pragma once

#include "foundation/Result.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace lb {

// Replaces a file's content all at once: a reader, or the next start after a
// crash, sees the old content or the new, never a mix.
struct AtomicFile {
  // Writes a temporary file beside `path` with `mode`, flushes it to disk and
  // renames it over `path`. On failure the old file is left as it was.
  static Result<> write(const std::filesystem::path& path, std::string_view content, mode_t mode);

  // The whole file; anything but a regular file (a FIFO, a folder) is
  // refused without waiting.
  static Result<std::string> read(const std::filesystem::path& path);

  // How the temporary files of `fileName` begin: a writer killed before its
  // rename leaves one behind, which the next writer may remove.
  static std::string temporaryPrefix(const std::string& fileName) { return "." + fileName + ".partial-"; }
  // Whether `fileName` is such a leftover, of whichever file.
  static bool isTemporary(std::string_view fileName) {
    return fileName.starts_with('.') && fileName.find(".partial-") != std::string_view::npos;
  }
};

} // namespace lb
