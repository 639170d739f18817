#pragma once

#include "tests/support/TemporaryDirectory.h"
#include "tests/support/Wait.h"

#include <csignal>
#include <cstdio>
#include <functional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace lb::test {

// A PulseAudio server of the tests' own: anonymous access on a socket in a
// temporary folder, with a built-in null sink. Whatever it starts it stops.
class PulseServer {
public:
  PulseServer() { start(); }
  ~PulseServer() { stop(); }

  const std::string& skipReason() const { return skipReason_; }
  std::string server() const { return "unix:" + (folder_ / "native").string(); }

  void start() {
    if (access("/usr/bin/pulseaudio", X_OK) != 0) {
      skipReason_ = "pulseaudio is not installed (scripts/install-deps installs it)";
      return;
    }
    writeFile(folder_ / "server.pa",
              "load-module module-native-protocol-unix auth-anonymous=1 socket=" + (folder_ / "native").string() +
                  "\nload-module module-null-sink sink_name=builtin "
                  "sink_properties=device.description=Built-in\n");
    std::string home = folder_.path().string();
    std::string file = (folder_ / "server.pa").string();
    // Run as root in a container: its own runtime folder and home.
    std::string command = "XDG_RUNTIME_DIR='" + home + "' HOME='" + home + "' exec /usr/bin/pulseaudio -n -F '" + file +
                          "' --daemonize=no --exit-idle-time=-1 --disallow-exit --use-pid-file=no --system=false "
                          "--log-target=file:'" +
                          home + "/server.log'";
    const char* arguments[] = {"/bin/sh", "-c", command.c_str(), nullptr};
    if (posix_spawn(&pid_, "/bin/sh", nullptr, nullptr, const_cast<char**>(arguments), environ) != 0 ||
        !waitUntil([&] { return pactl("info").find("Server Name") != std::string::npos; }, 30)) {
      skipReason_ = "the PulseAudio server did not start; see " + home + "/server.log";
    }
  }

  // Kills the server, as a crash would.
  void stop() {
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = 0;
    std::filesystem::remove(folder_ / "native");
  }

  // pactl against this server; its standard output.
  std::string pactl(const std::string& arguments) const {
    std::string command = "/usr/bin/pactl -s '" + server() + "' " + arguments + " 2>/dev/null";
    std::string output;
    if (FILE* pipe = popen(command.c_str(), "r")) {
      char buffer[4096];
      for (std::size_t read; (read = fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, read);
      pclose(pipe);
    }
    return output;
  }

  // A sink or remapped source that looks like a Bluetooth device with this
  // address; the module's index, for unloading it.
  std::string loadBluetoothSink(const std::string& name, const std::string& address, const std::string& description) {
    return trimmed(pactl("load-module module-null-sink sink_name=" + name +
                         " \"sink_properties='device.bus=bluetooth api.bluez5.address=" + address +
                         " device.description=\\\"" + description + "\\\"'\""));
  }
  std::string loadBluetoothSource(const std::string& name, const std::string& master, const std::string& address,
                                  const std::string& description) {
    return trimmed(pactl("load-module module-remap-source master=" + master + ".monitor source_name=" + name +
                         " \"source_properties='device.bus=bluetooth api.bluez5.address=" + address +
                         " device.description=\\\"" + description + "\\\"'\""));
  }

private:
  static std::string trimmed(std::string text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.pop_back();
    return text;
  }

  TemporaryDirectory folder_;
  pid_t pid_ = 0;
  std::string skipReason_;
};

} // namespace lb::test
