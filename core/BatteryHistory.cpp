#include "core/BatteryHistory.h"

#include "foundation/SettingsJson.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lb {

namespace {

constexpr const char* lastReadKey = "lastRead";
constexpr const char* sidesKey = "sides";

// A rise this small is the reading's own jitter, not a charge.
constexpr int jitter = 2;
// Further from the fitted line than this, on average, is noise.
constexpr double noiseLimit = 3.0;
// A pause this many times the usual step ends a trend: the device was off.
constexpr double pauseFactor = 6.0;

std::int64_t secondsOf(Date date) {
  return std::chrono::duration_cast<std::chrono::seconds>(date.time_since_epoch()).count();
}
Date dateOf(std::int64_t seconds) { return Date(std::chrono::seconds(seconds)); }

// Each tier keeps one reading per `bucket` of the readings younger than
// `age` and older than the tier before.
struct Tier {
  Seconds age;
  Seconds bucket;
};
constexpr Tier tiers[] = {
    {Seconds(3600), Seconds(0)},
    {Seconds(86400), Seconds(60)},
    {Seconds(7 * 86400), Seconds(900)},
    {BatteryHistory::kept, Seconds(3600)},
};

// The line through the readings by least squares, as the time it reaches
// 0, and how far the readings lie from it.
struct Fit {
  double slope; // per second
  Date empty;
  double noise;
};

Fit fitted(BatteryHistory::Series::const_iterator begin, BatteryHistory::Series::const_iterator end) {
  const auto origin = begin->at;
  const double n = double(end - begin);
  double sumT = 0, sumL = 0, sumTT = 0, sumTL = 0;
  for (auto it = begin; it != end; ++it) {
    const double t = timeBetween(origin, it->at).count();
    sumT += t;
    sumL += it->level;
    sumTT += t * t;
    sumTL += t * it->level;
  }
  const double slope = (n * sumTL - sumT * sumL) / (n * sumTT - sumT * sumT);
  const double intercept = (sumL - slope * sumT) / n;
  double squares = 0;
  for (auto it = begin; it != end; ++it) {
    const double off = it->level - (intercept + slope * timeBetween(origin, it->at).count());
    squares += off * off;
  }
  const auto empty = slope < 0 ? dateAdding(origin, Seconds(-intercept / slope)) : Date::max();
  return {slope, empty, std::sqrt(squares / n)};
}

std::optional<Seconds> sideTimeLeft(const BatteryHistory::Series& series, Date now, Seconds minimumSpan) {
  if (series.size() < 4) return std::nullopt;
  const auto last = series.end() - 1;
  if (last->level > (last - 1)->level) return std::nullopt; // charging
  // Back to where the level last rose by more than its jitter.
  auto first = last;
  while (first != series.begin() && (first - 1)->level >= first->level - jitter) --first;
  // And not across a long pause, when the device was off or put away.
  std::vector<double> steps;
  for (auto it = first; it != last; ++it) steps.push_back(timeBetween(it->at, (it + 1)->at).count());
  if (steps.empty()) return std::nullopt;
  auto middle = steps;
  std::nth_element(middle.begin(), middle.begin() + std::ptrdiff_t(middle.size() / 2), middle.end());
  const double usualStep = middle[middle.size() / 2];
  for (auto it = last; it != first; --it) {
    if (timeBetween((it - 1)->at, it->at).count() > pauseFactor * usualStep) {
      first = it;
      break;
    }
  }
  // Standing still for longer than the trend's steps: it no longer holds.
  if (timeBetween(last->at, now).count() > pauseFactor * usualStep) return std::nullopt;
  int falls = 0;
  for (auto it = first + 1; it <= last; ++it) falls += it->level < (it - 1)->level;
  if (falls < 3 || timeBetween(first->at, last->at) < minimumSpan) return std::nullopt;
  const auto fit = fitted(first, last + 1);
  if (fit.slope >= 0 || fit.noise > noiseLimit) return std::nullopt;
  return std::max(timeBetween(now, fit.empty), Seconds(0));
}

} // namespace

bool BatteryHistory::record(const BatteryType& levels, Date when) {
  // To the second, as the file keeps it.
  const Date now = std::chrono::floor<std::chrono::seconds>(when);
  std::vector<std::pair<std::string, int>> read{{"battery", levels.level}};
  if (levels.kind == BatteryType::Kind::leftRight) read = {{"left", levels.level}, {"right", levels.right}};
  lastRead_ = now;
  bool changed = false;
  for (const auto& [side, level] : read) {
    if (level <= 0) continue;
    auto& series = sides_[side];
    if (!series.empty() && series.back().level == level) continue;
    series.push_back({now, level});
    changed = true;
  }
  return changed;
}

void BatteryHistory::thin(Date now) {
  for (auto it = sides_.begin(); it != sides_.end();) {
    auto& series = it->second;
    Series thinned;
    thinned.reserve(series.size());
    for (std::size_t i = 0; i < series.size(); ++i) {
      const auto age = timeBetween(series[i].at, now);
      const auto tier = std::find_if(std::begin(tiers), std::end(tiers),
                                     [&](const Tier& each) { return age < each.age; });
      if (tier == std::end(tiers)) continue;
      // The last of its bucket stays: the next one falls in another.
      const bool lastOfBucket = tier->bucket == Seconds(0) || i + 1 == series.size() ||
                                std::floor(timeBetween(Date(), series[i].at) / tier->bucket) !=
                                    std::floor(timeBetween(Date(), series[i + 1].at) / tier->bucket);
      if (lastOfBucket) thinned.push_back(series[i]);
    }
    series = std::move(thinned);
    it = series.empty() ? sides_.erase(it) : std::next(it);
  }
  if (sides_.empty() && lastRead_ && timeBetween(*lastRead_, now) >= kept) lastRead_.reset();
}

std::optional<Seconds> BatteryHistory::timeLeft(Date now, Seconds minimumSpan) const {
  std::optional<Seconds> shortest;
  for (const auto& [side, series] : sides_) {
    const auto left = sideTimeLeft(series, now, minimumSpan);
    if (left && (!shortest || *left < *shortest)) shortest = left;
  }
  return shortest;
}

std::string BatteryHistory::toJson() const {
  SettingsValue::Dictionary sides;
  for (const auto& [side, series] : sides_) {
    SettingsValue::Array readings;
    readings.reserve(series.size());
    for (const auto& reading : series) {
      SettingsValue::Array pair;
      pair.reserve(2);
      pair.emplace_back(secondsOf(reading.at));
      pair.emplace_back(reading.level);
      readings.emplace_back(std::move(pair));
    }
    sides.insert_or_assign(side, std::move(readings));
  }
  SettingsValue::Dictionary history;
  history.insert_or_assign(sidesKey, std::move(sides));
  if (lastRead_) history.insert_or_assign(lastReadKey, secondsOf(*lastRead_));
  return SettingsJson::writeLine(history) + "\n";
}

std::optional<BatteryHistory> BatteryHistory::fromJson(std::string_view text, std::string& error) {
  const auto parsed = SettingsJson::parse(text, error);
  const auto* top = parsed ? parsed->as<SettingsValue::Dictionary>() : nullptr;
  const auto* sides = top && top->contains(sidesKey) ? top->at(sidesKey).as<SettingsValue::Dictionary>() : nullptr;
  if (!sides) {
    if (error.empty()) error = "it has no \"sides\"";
    return std::nullopt;
  }
  BatteryHistory history;
  if (const auto* lastRead = top->contains(lastReadKey) ? top->at(lastReadKey).as<std::int64_t>() : nullptr)
    history.lastRead_ = dateOf(*lastRead);
  for (const auto& [side, value] : *sides) {
    const auto* readings = value.as<SettingsValue::Array>();
    if (!readings) continue;
    Series series;
    for (const auto& reading : *readings) {
      const auto* pair = reading.as<SettingsValue::Array>();
      const auto* at = pair && pair->size() == 2 ? (*pair)[0].as<std::int64_t>() : nullptr;
      const auto* level = pair && pair->size() == 2 ? (*pair)[1].as<std::int64_t>() : nullptr;
      // In time order, as recorded; anything else was not written here.
      if (!at || !level || *level < 1 || *level > 100 || (!series.empty() && dateOf(*at) < series.back().at)) {
        error = "a reading of \"" + side + "\" is not [seconds, level] in time order";
        return std::nullopt;
      }
      series.push_back({dateOf(*at), int(*level)});
    }
    if (!series.empty()) history.sides_[side] = std::move(series);
  }
  return history;
}

} // namespace lb
