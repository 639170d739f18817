#include "linux/system/SpawnScriptRunner.h"

#include "foundation/PXRLog.h"
#include "foundation/Printing.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

extern char** environ;

namespace lb {

namespace {

// What the user can mend, rather than the kernel's word alone.
std::string whyNotStarted(const std::string& path, int error) {
  if (error == EACCES) return "it is not executable (chmod u+x '" + path + "')";
  if (error == ENOEXEC) return "it does not begin with an interpreter line such as #!/bin/sh";
  if (error == ENOENT && std::filesystem::exists(path)) {
    std::ifstream file(path);
    std::string first;
    std::getline(file, first);
    if (first.starts_with("#!")) {
      auto interpreter = first.substr(2);
      interpreter.erase(0, interpreter.find_first_not_of(" \t"));
      interpreter = interpreter.substr(0, interpreter.find_first_of(" \t\r"));
      return "the interpreter " + pxrPrintable(interpreter) + " on its first line does not exist";
    }
  }
  return std::strerror(error);
}

} // namespace

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
  if (error != 0) return Failure{whyNotStarted(path, error)};

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
  running_[pid] = {path, pidfd, watch};
  QObject::connect(watch, &QSocketNotifier::activated, watch,
                   [this, watch, pid, pidfd, timedOut, timeLimit, finished = std::move(finished)] {
                     int status = 0;
                     if (::waitpid(pid, &status, WNOHANG) != pid) return;
                     running_.erase(pid);
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

void SpawnScriptRunner::endRunning(Seconds grace) {
  if (running_.empty()) return;
  std::string paths;
  for (const auto& [pid, script] : running_) paths += (paths.empty() ? "" : ", ") + script.path;
  PXR_LOG_ERROR("Lanternbud quits: ending the scripts still running (" + paths + ").");
  for (const auto& [pid, script] : running_) ::kill(-pid, SIGTERM);
  const auto deadline = std::chrono::steady_clock::now() + grace;
  auto left = running_;
  while (!left.empty()) {
    const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(deadline -
                                                                            std::chrono::steady_clock::now());
    if (wait.count() <= 0) break;
    std::vector<pollfd> ends;
    for (const auto& [pid, script] : left) ends.push_back({script.pidfd, POLLIN, 0});
    if (::poll(ends.data(), ends.size(), static_cast<int>(wait.count())) < 0 && errno != EINTR) break;
    std::erase_if(left, [](const auto& entry) { return ::waitpid(entry.first, nullptr, WNOHANG) == entry.first; });
  }
  for (const auto& [pid, script] : running_) {
    // What the script started may outlive it in its group.
    if (::kill(-pid, 0) == 0) {
      ::kill(-pid, SIGKILL);
      if (left.contains(pid))
        PXR_LOG_ERROR(script.path + " did not end within " + pxrDescribeDouble(grace.count()) +
                      " s of SIGTERM; it was killed.");
    }
    if (left.contains(pid)) ::waitpid(pid, nullptr, 0);
    ::close(script.pidfd);
    delete script.watch;
  }
  running_.clear();
}

} // namespace lb
