#pragma once

#include "foundation/Result.h"

#include <functional>
#include <optional>
#include <string>

namespace lb {

// Starts user scripts. A script runs on its own: nothing waits for it,
// limits it, feeds it or reads it.
class ScriptRunner {
public:
  struct Outcome {
    bool success;
    std::string description; // "exited with status 3", "killed by signal 9"
  };

  virtual ~ScriptRunner() = default;

  // Starts the file at `path`. Once started, `finished` is called once, on
  // some other thread, when it ends.
  virtual Result<> start(const std::string& path, std::function<void(const Outcome&)> finished) = 0;
};

} // namespace lb
