#include "linux/system/SpawnScriptRunner.h"

#include "foundation/Printing.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <memory>

extern char** environ;

namespace lb {

ScriptRunner::Outcome SpawnScriptRunner::outcome(int status) {
  if (WIFEXITED(status)) {
    int code = WEXITSTATUS(status);
    return {code == 0, "exited with status " + std::to_string(code)};
  }
  if (WIFSIGNALED(status)) return {false, "killed by signal " + std::to_string(WTERMSIG(status))};
  return {false, "ended with wait status " + std::to_string(status)};
}

Result<> SpawnScriptRunner::start(const std::string& path, Seconds timeLimit,
                                  std::function<void(const Outcome&)> finished) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (int descriptor : {0, 1, 2}) {
    posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", descriptor == 0 ? O_RDONLY : O_WRONLY, 0);
  }
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  // Its own process group, and signals as a fresh program has them.
  sigset_t none, all;
  sigemptyset(&none);
  sigfillset(&all);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setsigdefault(&attributes, &all);
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

  pid_t pid = 0;
  char* arguments[] = {const_cast<char*>(path.c_str()), nullptr};
  int error = posix_spawn(&pid, path.c_str(), &actions, &attributes, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  if (error != 0) return Failure{std::strerror(error)};

  const int pidfd = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
  if (pidfd < 0) {
    const int openError = errno;
    ::kill(-pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
    return Failure{std::string("cannot watch it: ") + std::strerror(openError)};
  }
  // The notifier owns the timers; whichever way the script ends, it goes.
  auto* watch = new QSocketNotifier(pidfd, QSocketNotifier::Read, &context_);
  auto timedOut = std::make_shared<bool>(false);
  auto* limit = new QTimer(watch);
  limit->setSingleShot(true);
  QObject::connect(limit, &QTimer::timeout, watch, [watch, pid, timedOut] {
    *timedOut = true;
    ::kill(-pid, SIGTERM);
    QTimer::singleShot(5000, watch, [pid] { ::kill(-pid, SIGKILL); });
  });
  QObject::connect(watch, &QSocketNotifier::activated, watch,
                   [watch, pid, pidfd, timedOut, timeLimit, finished = std::move(finished)] {
                     int status = 0;
                     if (::waitpid(pid, &status, WNOHANG) != pid) return;
                     watch->setEnabled(false);
                     ::close(pidfd);
                     watch->deleteLater();
                     auto result = outcome(status);
                     if (*timedOut) {
                       result.description = "ended after running longer than " + pxrDescribeDouble(timeLimit.count()) +
                                            " s (" + result.description + ")";
                     }
                     finished(result);
                   });
  limit->start(static_cast<int>(std::min(timeLimit.count(), 86'400.0) * 1000));
  return {};
}

} // namespace lb
