#include "linux/LinuxBatterySources.h"

#include "linux/PropertyList.h"

#include <QProcess>

#include <stdexcept>

namespace lb {

SettingsValue LinuxBatterySources::runHelper(const std::string& address) {
  const auto program = QString::fromStdString(helperPath_);
  QProcess helper;
  helper.setStandardInputFile(QProcess::nullDevice());
  helper.setStandardErrorFile(QProcess::nullDevice());
  helper.start(program, {"-PrintBatteryInfo", QString::fromStdString(address)});
  if (!helper.waitForStarted(5000)) {
    throw std::runtime_error("cannot run " + helperPath_ + ": " + helper.errorString().toStdString());
  }
  if (!helper.waitForFinished(10000)) {
    helper.kill();
    helper.waitForFinished(1000);
    throw std::runtime_error(helperPath_ + " did not finish within 10 s");
  }
  const auto output = helper.readAllStandardOutput();
  return PropertyList::parse(std::string_view(output.constData(), static_cast<std::size_t>(output.size())));
}

} // namespace lb
