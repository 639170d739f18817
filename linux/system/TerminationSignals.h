#pragma once

#include <QObject>

#include <functional>

class QSocketNotifier;

namespace lb {

// SIGTERM, SIGINT and SIGHUP (the terminal or session going away) turned
// into a call on the main thread, so the program ends as a quit request
// does: saving first. The handler only writes to a
// pipe that Qt's event loop watches. One per process.
class TerminationSignals final : public QObject {
  Q_OBJECT

public:
  explicit TerminationSignals(std::function<void(int signal)> onSignal);
  ~TerminationSignals() override;

private:
  std::function<void(int)> onSignal_;
  QSocketNotifier* notifier_ = nullptr;
};

} // namespace lb
