#pragma once

#include "ports/ScriptRunner.h"

#include <QObject>

#include <map>
#include <string>
#include <sys/types.h>

namespace lb {

// Runs a script file directly with posix_spawn, never through a shell
// command line: the kernel reads its first line. Standard input, output and
// error are /dev/null, and the script has a process group of its own, so a
// signal meant for Lanternbud's terminal does not reach it. Its end is
// watched through a pidfd on Qt's event loop (no thread a script, and no
// reaping of other children); at its time limit its process group gets
// SIGTERM, and SIGKILL five seconds later. Main thread.
class SpawnScriptRunner final : public ScriptRunner {
public:
  Result<> start(const std::string& path, Seconds timeLimit, std::function<void(const Outcome&)> finished) override;

  // At quit: the process group of every script still running gets SIGTERM,
  // and SIGKILL what is left after `grace`; nothing else would ever end
  // them. Their ends are not reported. Blocks for at most `grace`.
  void endRunning(Seconds grace);

  // "exited with status 3", "killed by signal 9"
  static Outcome outcome(int waitStatus);

private:
  struct Running {
    std::string path;
    int pidfd;
    QObject* watch; // ends its timers too
  };
  std::map<pid_t, Running> running_;
  QObject context_;
};

} // namespace lb
