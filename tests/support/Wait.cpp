#include "tests/support/Wait.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

namespace lb::test {

bool waitUntil(const std::function<bool()>& done, double seconds) {
  Q_ASSERT(QCoreApplication::instance()); // the tests' main makes one
  QDeadlineTimer deadline(static_cast<qint64>(seconds * 1000));
  QTimer look;
  look.start(5);
  while (!done()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

} // namespace lb::test
