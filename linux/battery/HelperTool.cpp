#include "linux/battery/HelperTool.h"

#include "linux/battery/PropertyList.h"

#include <QProcess>

#include <stdexcept>

namespace lb {

SettingsValue HelperTool::run(const std::string& address) const {
  const auto program = QString::fromStdString(path_);
  QProcess helper;
  helper.setStandardInputFile(QProcess::nullDevice());
  helper.setStandardErrorFile(QProcess::nullDevice());
  helper.start(program, {"-PrintBatteryInfo", QString::fromStdString(address)});
  if (!helper.waitForStarted(5000)) {
    throw std::runtime_error("cannot run " + path_ + ": " + helper.errorString().toStdString());
  }
  if (!helper.waitForFinished(10000)) {
    helper.kill();
    helper.waitForFinished(1000);
    throw std::runtime_error(path_ + " did not finish within 10 s");
  }
  const auto output = helper.readAllStandardOutput();
  return PropertyList::parse(std::string_view(output.constData(), static_cast<std::size_t>(output.size())));
}

} // namespace lb
