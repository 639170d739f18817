#pragma once

#include "ports/ScriptsFolder.h"

#include <map>

namespace lb {

// A scripts folder held in memory: file name to text.
class SimScriptsFolder final : public ScriptsFolder {
public:
  std::optional<std::string> location() const override { return "/simulated/Scripts"; }
  std::optional<std::string> read(const std::string& fileName) const override {
    auto found = files.find(fileName);
    if (found == files.end()) return std::nullopt;
    return found->second;
  }
  bool remove(const std::string& fileName) override { return files.erase(fileName) > 0; }

  std::map<std::string, std::string> files;
};

} // namespace lb
