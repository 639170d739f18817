#pragma once

#include "core/BatteryType.h"
#include "foundation/Clock.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lb {

// One device's battery levels over time: each change the program read, by
// side ("battery", or "left" and "right" for a pair of earbuds), with its
// time, and when a level was last read. Kept for 60 days, thinned as it
// ages, so that a file of it stays small whatever the device does.
class BatteryHistory {
public:
  struct Reading {
    Date at;
    int level;
    bool operator==(const Reading&) const = default;
  };
  using Series = std::vector<Reading>;

  static constexpr Seconds kept{60.0 * 86400};

  // Adds each side's level where it differs from the last one kept, and
  // notes the time of the read. A side at 0 is absent (a bud in its case).
  // True when a level changed.
  bool record(const BatteryType& levels, Date now);
  // Drops what is older than `kept` and thins the rest: every change of
  // the last hour, then one a minute for a day, one a quarter hour for a
  // week, one an hour before that (the last of each).
  void thin(Date now);

  // How long until the first side runs out, from the recent steady fall:
  // readings since the level last rose, at least `minimumSpan` of them and
  // three falls, close to a straight line. None when the trend is too
  // short, noisy or rising (charging).
  std::optional<Seconds> timeLeft(Date now, Seconds minimumSpan) const;

  const std::map<std::string, Series>& sides() const { return sides_; }
  std::optional<Date> lastRead() const { return lastRead_; }
  bool empty() const { return sides_.empty(); }

  // {"lastRead": seconds, "sides": {"left": [[seconds, level], …]}}, on one
  // line; seconds since 1970.
  std::string toJson() const;
  // None when `text` is no history.
  static std::optional<BatteryHistory> fromJson(std::string_view text, std::string& error);

  bool operator==(const BatteryHistory&) const = default;

private:
  std::map<std::string, Series> sides_;
  std::optional<Date> lastRead_;
};

} // namespace lb
