#pragma once

#include "foundation/Clock.h"
#include "foundation/Result.h"

#include <functional>
#include <optional>
#include <string>

namespace lb {

// Starts user scripts. A script runs on its own: nothing feeds it or reads
// it, and it has a time limit.
class ScriptRunner {
public:
  struct Outcome {
    bool success;
    std::string description; // "exited with status 3", "killed by signal 9"
  };

  virtual ~ScriptRunner() = default;

  // Starts the file at `path`. Once started, `finished` is called once, on
  // the main thread, when it ends. One still running after `timeLimit` is
  // ended with all it started, and its outcome says so.
  virtual Result<> start(const std::string& path, Seconds timeLimit, std::function<void(const Outcome&)> finished) = 0;
};

} // namespace lb
