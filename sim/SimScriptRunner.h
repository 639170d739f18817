#pragma once

#include "ports/ScriptRunner.h"

#include <vector>

namespace lb {

// Records the scripts started; the test ends them with `finish`.
class SimScriptRunner final : public ScriptRunner {
public:
  struct Run {
    std::string path;
    Seconds timeLimit;
    std::function<void(const Outcome&)> finished;
  };

  Result<> start(const std::string& path, Seconds timeLimit, std::function<void(const Outcome&)> finished) override {
    if (refusal) return Failure{*refusal};
    runs.push_back({path, timeLimit, std::move(finished)});
    return {};
  }

  void finish(std::size_t index, Outcome outcome) { runs.at(index).finished(outcome); }

  std::optional<std::string> refusal; // the reason every start fails
  std::vector<Run> runs;
};

} // namespace lb
