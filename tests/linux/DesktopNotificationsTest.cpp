#include "linux/desktop/DesktopNotifications.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/RequireService.h"

#include <QBuffer>
#include <QDBusArgument>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace lb {

// Against python-dbusmock's notification daemon: the call, its urgency, the
// picture as raw pixels, and replacement by id; with no daemon, the bus's
// error is the answer.
TEST(DesktopNotifications, NotifyWithUrgencyPictureAndReplacement) {
  test::PrivateBus bus(test::PrivateBus::Kind::session);
  LB_REQUIRE_SERVICE(bus.skipReason());
  DesktopNotifications notifications(bus.connect("lanternbud"));
  const auto shown = [&notifications](const Notification& notification, Notifications::Id replacing) {
    std::optional<Result<Notifications::Id>> answer;
    notifications.show(notification, replacing, [&answer](Result<Notifications::Id> result) { answer = result; });
    EXPECT_TRUE(test::waitUntil([&answer] { return answer.has_value(); }, 30));
    return answer.value_or(Failure{"no answer"});
  };
  QByteArray png;
  QBuffer buffer(&png);
  QImage half(16, 16, QImage::Format_ARGB32);
  half.fill(Qt::transparent);
  QPainter(&half).fillRect(8, 0, 8, 16, Qt::red);
  half.save(&buffer, "PNG");
  Notification warning{"Lantern Buds: left bud at 15 %", "Charge it soon.", {png.begin(), png.end()}, false};
  const auto nobody = shown(warning, 0);
  ASSERT_FALSE(nobody);
  EXPECT_NE(nobody.failure().reason.find("org.freedesktop.Notifications"), std::string::npos)
      << nobody.failure().reason;

  ASSERT_TRUE(bus.startNotifications());
  const auto first = shown(warning, 0);
  ASSERT_TRUE(first);
  warning.critical = true;
  warning.png.clear();
  EXPECT_EQ(shown(warning, first.value()).value(), first.value());

  const auto calls = bus.notificationCalls();
  ASSERT_EQ(calls.size(), 2);
  EXPECT_EQ(calls[0].mid(0, 4), (QVariantList{"Lanternbud", 0u, "lanternbud", "Lantern Buds: left bud at 15 %"}));
  EXPECT_EQ(calls[1].value(1).toUInt(), first.value());
  const auto hints = [&calls](int call) { return qdbus_cast<QVariantMap>(calls[call].value(6)); };
  EXPECT_EQ(hints(0).value("urgency").toUInt(), 1u);
  EXPECT_EQ(hints(1).value("urgency").toUInt(), 2u);
  // (iiibiiay): 16 × 16 pixels, RGBA with alpha, on a white tile.
  const auto image = hints(0).value("image-data").value<QDBusArgument>();
  int width = 0, height = 0, rowStride = 0, bits = 0, channels = 0;
  bool alpha = false;
  QByteArray pixels;
  image.beginStructure();
  image >> width >> height >> rowStride >> alpha >> bits >> channels >> pixels;
  image.endStructure();
  const auto at = [&pixels](int x, int y) { return pixels.mid((y * 16 + x) * 4, 4); };
  EXPECT_EQ(
      std::tuple(width, height, rowStride, alpha, bits, channels, pixels.size(), at(2, 8), at(12, 8)),
      std::tuple(16, 16, 64, true, 8, 4, 1024, QByteArray("\xff\xff\xff\xff", 4), QByteArray("\xff\x00\x00\xff", 4)));
}

} // namespace lb
