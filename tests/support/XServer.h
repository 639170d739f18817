#pragma once

#include <QProcess>

#include <memory>
#include <optional>
#include <string>

namespace lb::test {

// A virtual X display (Xvfb) of its own, on a free display number, with an
// optional XEmbed tray panel on it. Everything it starts, it stops.
class XServer {
public:
  XServer();
  ~XServer();

  // Empty when the display runs; otherwise why the tests that need it skip.
  const std::string& skipReason() const { return skipReason_; }
  // ":12"
  const QString& display() const { return display_; }

  // Starts an XEmbed tray panel (trayer) at the top right of the screen.
  bool startTrayPanel();
  // The screen as a PNG file.
  bool screenshot(const std::string& file);
  // Whether a window of that title is on the screen.
  bool windowShown(const QString& title);
  // A program's standard output, run on this display; none when it failed.
  std::optional<QByteArray> run(const QString& program, const QStringList& arguments);

private:
  std::string skipReason_;
  QString display_;
  QProcess server_;
  std::unique_ptr<QProcess> panel_;
};

} // namespace lb::test
