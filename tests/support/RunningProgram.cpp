#include "tests/support/RunningProgram.h"

#include <QDBusConnectionInterface>

#include <fstream>
#include <sstream>

namespace lb::test {

RunningProgram::RunningProgram(const PrivateBus* system, const PrivateBus& session, const std::string& pulseServer)
    : session_(session), environment_(QProcessEnvironment::systemEnvironment()) {
  if (system) environment_.insert("DBUS_SYSTEM_BUS_ADDRESS", QString::fromStdString(system->address()));
  environment_.insert("DBUS_SESSION_BUS_ADDRESS", QString::fromStdString(session.address()));
  environment_.insert("PULSE_SERVER", QString::fromStdString(pulseServer));
  environment_.insert("HOME", QString::fromStdString(home_.path().string()));
  for (const char* kind : {"config", "data", "state"}) {
    environment_.insert(QString("XDG_%1_HOME").arg(QString(kind).toUpper()),
                        QString::fromStdString((home_ / kind).string()));
  }
  environment_.remove("DISPLAY");
  environment_.remove("WAYLAND_DISPLAY");
  // English whatever the developer's language, since the tests read texts.
  for (const char* variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES"}) environment_.remove(variable);
  environment_.insert("LANG", "C.UTF-8");
  environment_.insert("QT_FORCE_STDERR_LOGGING", "1"); // Qt's notes where the test reads them
  program_.setProcessEnvironment(environment_);
  program_.setStandardOutputFile(QProcess::nullDevice());
  program_.setStandardErrorFile(QProcess::nullDevice());
}

void RunningProgram::setVariable(const QString& name, const QString& value) {
  environment_.insert(name, value);
  program_.setProcessEnvironment(environment_);
}

RunningProgram::~RunningProgram() {
  if (program_.state() == QProcess::NotRunning) return;
  program_.kill();
  program_.waitForFinished(5000);
}

std::string RunningProgram::logText(const std::string& processName) const {
  std::ifstream file(stateFolder() / (processName + " App Log.log"));
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

bool RunningProgram::start(const QStringList& arguments) {
  program_.start(LANTERNBUD_BIN_DIR "/lanternbud", arguments);
  if (!program_.waitForStarted(5000)) return false;
  auto bus = const_cast<PrivateBus&>(session_).connect("watcher");
  // This process's name, not the one an instance that just ended still holds.
  const auto pid = static_cast<uint>(program_.processId());
  return waitUntil(
             [&] { return bus.interface()->servicePid("org.lanternbud.Lanternbud").value() == pid || !running(); },
             20) &&
         running();
}

bool RunningProgram::running() { return program_.state() != QProcess::NotRunning; }

RunningProgram::Result RunningProgram::run(const QString& program, const QStringList& arguments,
                                           int timeoutSeconds) const {
  QProcess process;
  process.setProcessEnvironment(environment_);
  process.start(LANTERNBUD_BIN_DIR "/" + program, arguments);
  Result result;
  if (!process.waitForFinished(timeoutSeconds * 1000)) {
    process.kill();
    process.waitForFinished(1000);
    result.errors = "did not finish";
    return result;
  }
  result.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
  result.output = process.readAllStandardOutput().toStdString();
  result.errors = process.readAllStandardError().toStdString();
  return result;
}

} // namespace lb::test
