#include "linux/system/TerminationSignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace lb {

namespace {
int pipeEnds[2] = {-1, -1};

extern "C" void writeSignal(int signal) {
  const unsigned char number = static_cast<unsigned char>(signal);
  [[maybe_unused]] auto written = ::write(pipeEnds[1], &number, 1);
}
} // namespace

TerminationSignals::TerminationSignals(std::function<void(int)> onSignal) : onSignal_(std::move(onSignal)) {
  if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) return;
  notifier_ = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
  connect(notifier_, &QSocketNotifier::activated, this, [this] {
    unsigned char number = 0;
    while (::read(pipeEnds[0], &number, 1) == 1) onSignal_(number);
  });
  struct sigaction action {};
  action.sa_handler = writeSignal;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  for (int signal : {SIGTERM, SIGINT, SIGHUP}) ::sigaction(signal, &action, nullptr);
}

TerminationSignals::~TerminationSignals() {
  for (int signal : {SIGTERM, SIGINT, SIGHUP}) ::signal(signal, SIG_DFL);
  delete notifier_;
  for (int& end : pipeEnds) {
    if (end >= 0) ::close(end);
    end = -1;
  }
}

} // namespace lb
