#include "linux/system/SpawnScriptRunner.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

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

Result<> SpawnScriptRunner::start(const std::string& path, std::function<void(const Outcome&)> finished) {
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

  std::thread([pid, finished = std::move(finished)] {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
      if (errno != EINTR) {
        finished({false, std::string("could not wait for it: ") + std::strerror(errno)});
        return;
      }
    }
    finished(outcome(status));
  }).detach();
  return {};
}

} // namespace lb
