#include "tests/support/XServer.h"

#include "tests/support/PrivateBus.h"

#include <QProcessEnvironment>
#include <QStandardPaths>

namespace lb::test {

XServer::XServer() {
  if (QStandardPaths::findExecutable("Xvfb").isEmpty()) {
    skipReason_ = "Xvfb is not installed (scripts/install-deps installs it)";
    return;
  }
  // Xvfb picks a free display and says which on the descriptor given.
  server_.start("Xvfb", {"-displayfd", "1", "-screen", "0", "640x240x24", "-nolisten", "tcp"});
  if (!server_.waitForStarted(5000) || !waitUntil([&] { return server_.canReadLine(); }, 30)) {
    skipReason_ = "Xvfb did not start";
    return;
  }
  display_ = ":" + QString::fromUtf8(server_.readLine()).trimmed();
}

XServer::~XServer() {
  for (auto* process : {panel_.get(), &server_}) {
    if (!process || process->state() == QProcess::NotRunning) continue;
    process->terminate();
    if (!process->waitForFinished(5000)) process->kill();
  }
}

bool XServer::startTrayPanel() {
  panel_ = std::make_unique<QProcess>();
  auto environment = QProcessEnvironment::systemEnvironment();
  environment.insert("DISPLAY", display_);
  panel_->setProcessEnvironment(environment);
  panel_->start("trayer", {"--edge", "top", "--align", "right", "--widthtype", "request", "--height", "32",
                           "--transparent", "true", "--alpha", "0", "--tint", "0x333333", "--SetDockType", "true"});
  if (!panel_->waitForStarted(5000)) {
    skipReason_ = "trayer is not installed (scripts/install-deps installs it)";
    return false;
  }
  // Ready once its panel window is on the screen.
  return waitUntil([&] {
    QProcess windows;
    windows.setProcessEnvironment(panel_->processEnvironment());
    windows.start("xwininfo", {"-root", "-tree"});
    return windows.waitForFinished(5000) && windows.readAllStandardOutput().contains("\"trayer\"");
  });
}

std::optional<QByteArray> XServer::run(const QString& program, const QStringList& arguments) {
  QProcess process;
  auto environment = QProcessEnvironment::systemEnvironment();
  environment.insert("DISPLAY", display_);
  process.setProcessEnvironment(environment);
  process.start(program, arguments);
  const bool ran = process.waitForFinished(20000) && process.exitStatus() == QProcess::NormalExit;
  if (!ran || process.exitCode() != 0) return std::nullopt;
  return process.readAllStandardOutput();
}

bool XServer::screenshot(const std::string& file) {
  return run("import", {"-window", "root", QString::fromStdString(file)}).has_value();
}

bool XServer::windowShown(const QString& title) {
  return run("xwininfo", {"-name", title}).value_or("").contains("Map State: IsViewable");
}

} // namespace lb::test
