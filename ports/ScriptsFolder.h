#pragma once

#include <optional>
#include <string>

namespace lb {

// The folder of the user's connect and disconnect scripts.
class ScriptsFolder {
public:
  virtual ~ScriptsFolder() = default;
  // Where the folder is, for log lines; nothing when there is none.
  virtual std::optional<std::string> location() const = 0;
  // A file's whole text, or nothing when it is missing or unreadable.
  virtual std::optional<std::string> read(const std::string& fileName) const = 0;
  // Whether the file was there and is now gone.
  virtual bool remove(const std::string& fileName) = 0;
};

} // namespace lb
