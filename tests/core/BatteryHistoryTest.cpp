#include "core/BatteryHistory.h"

#include "tests/support/SimulatedDevice.h"

#include <gtest/gtest.h>

namespace lb {

namespace {

const Date start{std::chrono::seconds(1'700'000'000)};
Date minute(double m) { return dateAdding(start, Seconds(m * 60)); }

// Levels by minute, one side; the estimate at `now` (minutes) as its text.
std::optional<std::string> estimate(const std::vector<std::pair<double, int>>& readings, double now,
                                    const std::vector<std::pair<double, int>>& right = {}) {
  BatteryHistory history;
  for (const auto& [at, level] : readings) {
    history.record({right.empty() ? BatteryType::Kind::single : BatteryType::Kind::leftRight, level, 0}, minute(at));
  }
  for (const auto& [at, level] : right) history.record({BatteryType::Kind::leftRight, 0, level}, minute(at));
  return BatteryHistories::timeLeftText(history.timeLeft(minute(now), Seconds(1800)));
}

// A point every `step` minutes from `from`, `count` times.
std::vector<std::pair<double, int>> falling(int from, int count, double step, double at = 0) {
  std::vector<std::pair<double, int>> readings;
  for (int k = 0; k < count; ++k) readings.emplace_back(at + k * step, from - k);
  return readings;
}

} // namespace

TEST(BatteryHistory, TellsTheTimeLeftOnlyFromASteadyFall) {
  // 80 to 70 in an hour, a point every 6 minutes: 70 points are 7 hours.
  EXPECT_EQ(estimate(falling(80, 11, 6), 60), "about 7 hours left");
  EXPECT_EQ(estimate(falling(30, 11, 3), 30), "about 60 minutes left");
  // Each bud for itself: the right one, twice as fast, runs out first.
  EXPECT_EQ(estimate(falling(80, 11, 6), 60, falling(80, 21, 3)), "about 3 hours left");
  // A small rise is the reading's jitter.
  auto jittery = falling(80, 11, 6);
  jittery[5].second += 2;
  EXPECT_EQ(estimate(jittery, 60), "about 7 hours left");

  EXPECT_EQ(estimate(falling(80, 4, 6), 18), std::nullopt) << "shorter than 30 minutes";
  EXPECT_EQ(estimate({{0, 80}, {20, 79}, {40, 78}}, 40), std::nullopt) << "two falls";
  auto charging = falling(80, 11, 6);
  charging.emplace_back(61, 75);
  EXPECT_EQ(estimate(charging, 62), std::nullopt) << "charging";
  auto noisy = falling(80, 11, 6);
  for (std::size_t k = 5; k < noisy.size(); ++k) noisy[k].second -= 25;
  EXPECT_EQ(estimate(noisy, 60), std::nullopt) << "a jump of 25";
  EXPECT_EQ(estimate(falling(80, 11, 6), 100), std::nullopt) << "standing still since minute 60";
  // Yesterday's use, then a night in the drawer: only today's fall counts.
  auto twoDays = falling(100, 11, 6);
  for (const auto& each : falling(89, 6, 6, 900)) twoDays.push_back(each);
  EXPECT_EQ(estimate(twoDays, 930), "about 8 hours left");
}

TEST(BatteryHistory, KeepsSixtyDaysThinnedAsTheyAgeAndReadsBackWhatItWrote) {
  // A change every minute for 61 days, thinned every hour as the program does.
  BatteryHistory history;
  const int minutes = 61 * 1440;
  for (int m = 0; m <= minutes; ++m) {
    history.record({BatteryType::Kind::single, 100 - m % 99, 0}, minute(m));
    if (m % 60 == 0) history.thin(minute(m));
  }
  history.thin(minute(minutes));
  const auto& kept = history.sides().at("battery");
  EXPECT_GE(kept.front().at, minute(minutes - 60 * 1440));
  EXPECT_EQ(kept.back().at, minute(minutes));
  const auto within = [&](double fromMinutes, double toMinutes) {
    return std::count_if(kept.begin(), kept.end(), [&](const auto& reading) {
      return reading.at > minute(minutes - toMinutes) && reading.at <= minute(minutes - fromMinutes);
    });
  };
  EXPECT_EQ(within(0, 60), 60);                  // every change of the last hour
  EXPECT_LE(within(60, 1440), 1381);             // then one a minute
  EXPECT_LE(within(1440, 7 * 1440), 6 * 96 + 1); // one a quarter hour
  EXPECT_LE(within(7 * 1440, 60 * 1440), 53 * 24 + 1);
  EXPECT_LT(kept.size(), 3400u);

  std::string error;
  EXPECT_EQ(BatteryHistory::fromJson(history.toJson(), error), history);
  for (const auto* bad : {"[]", R"({"sides": {"left": [[5, 50], [4, 40]]}})", R"({"sides": {"left": [[5, 0]]}})"}) {
    EXPECT_FALSE(BatteryHistory::fromJson(bad, error)) << bad;
    EXPECT_FALSE(error.empty());
  }
}

// The levels the program reads of a connected device: its history, the
// time left in the tool tip, kept across a restart and gone with the device.
TEST(BatteryHistory, RecordedFromWhatIsReadAndRemovedWithTheDevice) {
  test::SimulatedDevice d({}, 4, "Lantern Buds");
  d.sim.world.setConnected(d.address, true);
  for (int level = 80; level >= 70; --level) {
    d.device->setBatteryProperty("batteryPercentSingle", level);
    d.sim.loop.advance(360);
  }
  EXPECT_NE(d.setting->toolTipString().value_or("").find("Battery Level: 70%, about 7 hours left."), std::string::npos)
      << d.setting->toolTipString().value_or("");
  const auto address = d.setting->address()->toString();
  ASSERT_EQ(d.setting->batteryHistory()->sides().at("battery").size(), 11u);

  BatteryHistories restarted(d.sim.historyFiles, d.sim.loop);
  EXPECT_EQ(restarted.of(address).sides(), d.setting->batteryHistory()->sides());

  ASSERT_TRUE(d.registry->remove(d.setting->deviceID()));
  // Added again before the file is gone: it begins anew, with what it reads now.
  EXPECT_EQ(d.registry->add(d.address).value().batteryHistory()->sides().at("battery").size(), 1u);
  ASSERT_TRUE(d.registry->remove(d.registry->deviceSettingList().at(0)->deviceID()));
  d.sim.loop.runDue();
  EXPECT_FALSE(d.sim.historyFiles.read(address).value());
}

} // namespace lb
