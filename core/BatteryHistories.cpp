#include "core/BatteryHistories.h"

#include "core/Texts.h"
#include "foundation/PXRLog.h"

#include <algorithm>
#include <cmath>

namespace lb {

void BatteryHistories::levelsRead(const std::string& address, const BatteryType& levels) {
  const auto now = loop_.now();
  auto& kept = loaded(address);
  if (kept.history.record(levels, now)) {
    // Hourly: thinning goes over the whole history.
    if (timeBetween(kept.thinnedAt, now) >= Seconds(3600)) {
      kept.history.thin(now);
      kept.thinnedAt = now;
    }
    save(address, kept);
  } else if (timeBetween(kept.savedAt, now) >= lastReadSaved) {
    save(address, kept);
  }
}

const BatteryHistory& BatteryHistories::of(const std::string& address) { return loaded(address).history; }

BatteryHistories::Kept& BatteryHistories::loaded(const std::string& address) {
  auto& kept = histories_[address];
  if (kept.generation) return kept;
  kept.generation = ++generations_;
  const auto text = files_.read(address);
  if (!text) {
    PXR_LOG_ERROR("The battery history of " + address + " could not be read (" + text.failure().reason +
                  "); what is read in this run is not saved until it can be.");
    kept.readOnly = true;
    return kept;
  }
  if (!text.value()) return kept;
  std::string error;
  if (auto history = BatteryHistory::fromJson(*text.value(), error)) {
    kept.history = *std::move(history);
    kept.history.thin(loop_.now());
    return kept;
  }
  const auto aside = files_.setAside(address);
  PXR_LOG_ERROR("The battery history of " + address + " is not a history (" + error + ")" +
                (aside ? "; it was moved to " + aside.value() + " and a new one begins."
                       : " and could not be moved aside (" + aside.failure().reason +
                             "); what is read in this run is not saved."));
  kept.readOnly = !aside;
  return kept;
}

// The entry stays, empty: a device added again at once begins anew rather
// than reading a file whose removal is still on its way.
void BatteryHistories::forget(const std::string& address) {
  auto& kept = histories_[address];
  kept = {};
  save(address, kept);
}

void BatteryHistories::saveAll() {
  for (auto& [address, kept] : histories_) {
    std::unique_lock lock(writing_);
    const bool behind = written_[address] < kept.generation;
    lock.unlock();
    if (behind && !kept.readOnly) write(address, snapshotOf(kept));
  }
}

void BatteryHistories::save(const std::string& address, Kept& kept) {
  kept.generation = ++generations_;
  kept.savedAt = loop_.now();
  if (kept.readOnly) return;
  loop_.runOnWorker([this, address, snapshot = snapshotOf(kept)] { write(address, snapshot); });
}

// An empty history needs no file.
BatteryHistories::Snapshot BatteryHistories::snapshotOf(const Kept& kept) {
  return {kept.generation, kept.history.empty() ? std::nullopt : std::optional(kept.history)};
}

void BatteryHistories::write(const std::string& address, const Snapshot& snapshot) {
  std::lock_guard lock(writing_);
  auto& written = written_[address];
  if (snapshot.generation <= written) return;
  written = snapshot.generation;
  const auto done = snapshot.history ? files_.write(address, snapshot.history->toJson()) : files_.remove(address);
  if (!done) {
    PXR_LOG_ERROR("Could not " + std::string(snapshot.history ? "save" : "remove") + " the battery history of " +
                  address + ": " + done.failure().reason + ".");
  }
}

std::optional<std::string> BatteryHistories::timeLeftText(std::optional<Seconds> left) {
  if (!left) return std::nullopt;
  const double minutes = left->count() / 60;
  if (minutes >= 90) return localized("about %n hours left", nullptr, int(std::lround(minutes / 60)));
  return localized("about %n minutes left", nullptr, std::max(1, int(std::lround(minutes))));
}

} // namespace lb
