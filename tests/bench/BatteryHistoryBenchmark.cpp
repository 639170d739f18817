// What keeping battery histories costs: the main thread's share of each
// level read (recording, hourly thinning, handing a copy to a worker) over
// 60 simulated days of a pair of earbuds whose both levels change every
// minute, the worst a device does when read once a minute; then the files
// of 10 such devices after those 60 days, their sizes, and the worker's
// time to write one. Usage: battery_history_benchmark [FOLDER] (the files
// go to a temporary folder unless one is given, and are kept there then).
#include "core/BatteryHistories.h"
#include "linux/xdg/XdgBatteryHistoryFiles.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using lb::Seconds;

// Time stands where the benchmark puts it; worker tasks are counted and
// dropped, so that only the main thread's share is timed.
class BenchLoop final : public lb::EventLoop {
public:
  lb::Date now() const override { return now_; }
  void post(Task) override {}
  void postAfter(Seconds, Task) override {}
  void runOnWorker(Task) override { ++dropped; }
  void sleepOnWorker(Seconds) override {}
  std::unique_ptr<lb::ScheduledTimer> scheduleTimer(Seconds, Seconds, bool, std::function<void()>) override {
    return nullptr;
  }

  lb::Date now_{std::chrono::seconds(1'790'000'000)};
  std::size_t dropped = 0;
};

} // namespace

int main(int argc, char** argv) {
  constexpr int devices = 10;
  constexpr int minutes = 60 * 1440;
  std::filesystem::path folder;
  if (argc > 1) {
    folder = argv[1];
  } else {
    std::string pattern = (std::filesystem::temp_directory_path() / "lanternbud-bench-XXXXXX").string();
    folder = mkdtemp(pattern.data());
  }
  lb::XdgBatteryHistoryFiles files(folder);
  BenchLoop loop;
  lb::BatteryHistories histories(files, loop);

  std::vector<double> microseconds;
  microseconds.reserve(std::size_t(devices) * minutes);
  for (int minute = 0; minute < minutes; ++minute) {
    loop.now_ += std::chrono::minutes(1);
    for (int device = 0; device < devices; ++device) {
      const std::string address = "00:1D:43:B0:00:0" + std::to_string(device);
      const lb::BatteryType levels{lb::BatteryType::Kind::leftRight, 100 - (minute + device) % 99,
                                   100 - (minute + 50) % 99};
      const auto start = std::chrono::steady_clock::now();
      histories.levelsRead(address, levels);
      microseconds.push_back(
          std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
  }
  auto sorted = microseconds;
  std::sort(sorted.begin(), sorted.end());
  double sum = 0;
  for (double each : microseconds) sum += each;
  const auto quantile = [&](double q) { return sorted[std::size_t(q * double(sorted.size() - 1))]; };
  std::printf("Level reads: %zu (%d devices, both buds changing every minute for 60 days)\n", microseconds.size(),
              devices);
  std::printf("Main thread per read: mean %.1f us, median %.1f us, p99 %.1f us, max %.1f us (target: under 1000)\n",
              sum / double(microseconds.size()), quantile(0.5), quantile(0.99), sorted.back());
  std::printf("Writes handed to workers: %zu\n", loop.dropped);

  const auto start = std::chrono::steady_clock::now();
  histories.saveAll();
  const double writing = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  std::uintmax_t total = 0, largest = 0;
  std::size_t readings = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    total += entry.file_size();
    largest = std::max(largest, entry.file_size());
  }
  for (int device = 0; device < devices; ++device) {
    for (const auto& [side, series] : histories.of("00:1D:43:B0:00:0" + std::to_string(device)).sides())
      readings += series.size();
  }
  std::printf("Files after 60 days: %d, %.0f KiB in all, the largest %.0f KiB, %zu readings kept of %d read\n", devices,
              double(total) / 1024, double(largest) / 1024, readings, 2 * devices * minutes);
  std::printf("Worker per file written (JSON and a flushed, atomic write): %.1f ms\n", writing / devices);
  if (argc <= 1) std::filesystem::remove_all(folder);
  return 0;
}
