#pragma once

#include "ports/ScriptRunner.h"

namespace lb {

// Runs a script file directly with posix_spawn, never through a shell
// command line: the kernel reads its first line. Standard input, output and
// error are /dev/null, and the script has a process group of its own, so a
// signal meant for Lanternbud's terminal does not reach it. A thread waits
// for its end; nothing waits for that thread, and no script is killed.
class SpawnScriptRunner final : public ScriptRunner {
public:
  Result<> start(const std::string& path, std::function<void(const Outcome&)> finished) override;

  // "exited with status 3", "killed by signal 9"
  static Outcome outcome(int waitStatus);
};

} // namespace lb
