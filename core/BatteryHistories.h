#pragma once

#include "core/BatteryHistory.h"
#include "core/BatteryType.h"
#include "ports/BatteryHistoryFiles.h"
#include "ports/EventLoop.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace lb {

// Every device's battery history, by canonical address: recorded from the
// levels the program reads while a device is connected, and kept in its
// file, which is written on a worker so that a read never waits for the
// disk. Main thread, but for the writes.
class BatteryHistories {
public:
  // A history whose levels stand still is written this often all the same,
  // so that the next start knows when they were last read.
  static constexpr Seconds lastReadSaved{900};

  BatteryHistories(BatteryHistoryFiles& files, EventLoop& loop) : files_(files), loop_(loop) {}

  void levelsRead(const std::string& address, const BatteryType& levels);
  // What is kept of the device; read from its file the first time.
  const BatteryHistory& of(const std::string& address);
  // A removed device: its history goes, and its file.
  void forget(const std::string& address);
  // Writes, here and now, what no worker has written yet: for the end of a
  // run, when the workers may not be waited for.
  void saveAll();

  // "about 5 hours left", "about 20 minutes left"; none without an estimate.
  static std::optional<std::string> timeLeftText(std::optional<Seconds> left);

private:
  struct Kept {
    BatteryHistory history;
    std::uint64_t generation = 0; // of its last change
    Date savedAt{};
    Date thinnedAt{};
    bool readOnly = false; // its file could not be read: never written over
  };
  // What the file is to hold, and which change it is: a worker that comes
  // late with an older one writes nothing.
  struct Snapshot {
    std::uint64_t generation;
    std::optional<BatteryHistory> history; // none: remove the file
  };

  // The device's entry, read from its file the first time.
  Kept& loaded(const std::string& address);
  void save(const std::string& address, Kept& kept);
  static Snapshot snapshotOf(const Kept& kept);
  // Any thread.
  void write(const std::string& address, const Snapshot& snapshot);

  BatteryHistoryFiles& files_;
  EventLoop& loop_;
  std::map<std::string, Kept> histories_;
  std::uint64_t generations_ = 0;
  std::mutex writing_;
  std::map<std::string, std::uint64_t> written_; // by address: the generation on disk
};

} // namespace lb
