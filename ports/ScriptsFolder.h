#pragma once

#include "foundation/Result.h"
#include "foundation/SettingsValue.h"

#include <optional>
#include <string>

namespace lb {

// The folder of the user's connect and disconnect scripts, and what it takes
// to write there: finding and creating it, asking the user for access, and a
// remembered grant ("bookmark") that later writes reuse. Where the platform
// needs no permission, asking answers yes and a grant is the folder's path.
class ScriptsFolder {
public:
  virtual ~ScriptsFolder() = default;

  // Where the folder is, whether or not it exists; none when the system
  // has no place for it.
  virtual std::optional<std::string> location() const = 0;
  virtual std::string parentLocation() const = 0;
  virtual bool exists() const = 0;
  // Whether writing there takes a grant at all; without a sandbox it does not.
  virtual bool needsGrant() const = 0;
  // Creates it (owner only).
  virtual Result<> create() = 0;
  // Asks the user to choose `location`; true only if exactly that was chosen.
  virtual bool promptForAccess(const std::string& location, const std::string& message) = 0;
  // A grant that can be stored in the settings, and its use later.
  virtual std::optional<SettingsValue::Data> bookmark(const std::string& location) = 0;
  virtual std::optional<std::string> resolveBookmark(const SettingsValue::Data& bookmark) = 0;
  virtual bool startAccessing(const std::string& location) = 0;
  virtual void stopAccessing(const std::string& location) = 0;

  // Files in the folder, by name.
  virtual std::optional<std::string> read(const std::string& fileName) const = 0;
  virtual bool fileExists(const std::string& fileName) const = 0;
  // Removing a missing file is no failure.
  virtual Result<> remove(const std::string& fileName) = 0;
  // Replaces the file at once, executable by its owner only.
  virtual Result<> write(const std::string& fileName, const std::string& text) = 0;
};

} // namespace lb
