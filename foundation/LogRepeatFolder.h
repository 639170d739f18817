#pragma once

#include "foundation/Clock.h"
#include "foundation/LogSink.h"

#include <list>
#include <string>
#include <vector>

namespace lb {

// Folds a line met again within a few seconds of its first showing (a
// device whose connection flaps says the same few things many times a
// second) into that first line and, once the seconds are over, one line
// "… repeated N times: <message>". The journal limits its rate by itself;
// the log file and the terminal take their lines through this.
class LogRepeatFolder {
public:
  static constexpr Seconds window{5.0};

  // The lines to write now for `line`: none while it repeats one within the
  // window, and the summaries of the windows it ends.
  std::vector<LogLine> take(const LogLine& line);
  // The summaries of every window still open, at the end.
  std::vector<LogLine> flush();

private:
  struct Recent {
    LogLine first;
    int repeats = 0;
    Date last;
  };
  // Oldest first.
  std::list<Recent> recent_;
  // Ends a window, with its summary dated `at` when it folded any line.
  void close(std::list<Recent>::iterator recent, Date at, std::vector<LogLine>& out);
};

} // namespace lb
