#pragma once

#include "tests/support/PrivateBus.h"
#include "tests/support/TemporaryDirectory.h"

#include <QProcess>
#include <QProcessEnvironment>

#include <string>

namespace lb::test {

// The built lanternbud and lanternbud-ctl run as real processes against
// the buses and sound server a test gives them, with a home of their own
// (settings, scripts, logs) in a temporary folder.
class RunningProgram {
public:
  struct Result {
    int status = -1;
    std::string output;
    std::string errors;
  };

  RunningProgram(const PrivateBus* system, const PrivateBus& session, const std::string& pulseServer);
  ~RunningProgram();

  // Sets a variable of the programs' environment; they run without a
  // display, in English, unless given one or another language (LANG).
  void setVariable(const QString& name, const QString& value);

  std::filesystem::path settingsFile() const { return home_ / "config/lanternbud/settings.json"; }
  std::filesystem::path scriptsFolder() const { return home_ / "data/lanternbud/Scripts"; }
  std::filesystem::path stateFolder() const { return home_ / "state/lanternbud"; }
  std::string logText(const std::string& processName = "lanternbud") const;

  // Starts lanternbud and waits until its scripting interface is on the
  // session bus; false if it did not come.
  bool start(const QStringList& arguments = {});
  QProcess& process() { return program_; }
  bool running();

  // A program of the build (lanternbud, lanternbud-ctl, LanternbudHelperTool)
  // run to its end.
  Result run(const QString& program, const QStringList& arguments, int timeoutSeconds = 60) const;
  Result ctl(const QStringList& arguments) const { return run("lanternbud-ctl", arguments); }

private:
  const PrivateBus& session_;
  TemporaryDirectory home_;
  QProcessEnvironment environment_;
  QProcess program_;
};

} // namespace lb::test
