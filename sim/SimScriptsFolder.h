#pragma once

#include "ports/ScriptsFolder.h"

#include <deque>
#include <map>
#include <vector>

namespace lb {

// A scripts folder held in memory, with a user who answers the access
// questions as the test says.
class SimScriptsFolder final : public ScriptsFolder {
public:
  static constexpr const char* folder = "/simulated/Scripts";

  std::optional<std::string> location() const override { return folder; }
  std::string parentLocation() const override { return "/simulated"; }
  bool exists() const override { return folderExists; }
  bool needsGrant() const override { return grantNeeded; }
  Result<> create() override {
    folderExists = true;
    return {};
  }
  bool promptForAccess(const std::string& location, const std::string&) override {
    prompts.push_back(location);
    if (choices.empty()) return false;
    auto chosen = choices.front();
    choices.pop_front();
    return chosen == location;
  }
  std::optional<SettingsValue::Data> bookmark(const std::string& location) override {
    return SettingsValue::Data(location.begin(), location.end());
  }
  std::optional<std::string> resolveBookmark(const SettingsValue::Data& data) override {
    if (!bookmarksResolve) return std::nullopt;
    return std::string(data.begin(), data.end());
  }
  bool startAccessing(const std::string&) override { return true; }
  void stopAccessing(const std::string&) override {}

  std::optional<std::string> read(const std::string& fileName) const override {
    auto found = files.find(fileName);
    if (found == files.end()) return std::nullopt;
    return found->second;
  }
  bool fileExists(const std::string& fileName) const override { return files.contains(fileName); }
  Result<> remove(const std::string& fileName) override {
    files.erase(fileName);
    return {};
  }
  Result<> write(const std::string& fileName, const std::string& text) override {
    files[fileName] = text;
    ++writes;
    return {};
  }

  // The world's side.
  std::map<std::string, std::string> files;
  bool folderExists = true;
  bool grantNeeded = false; // as on Linux; true for a sandbox
  bool bookmarksResolve = true;
  std::deque<std::string> choices; // what the user picks at each question
  std::vector<std::string> prompts;
  int writes = 0;
};

} // namespace lb
