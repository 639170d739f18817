#include "linux/desktop/DesktopNotifications.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/RequireService.h"

#include <QBuffer>
#include <QDBusArgument>
#include <QImage>

#include <gtest/gtest.h>

namespace lb {

namespace {

// Shows one notification and waits for the service's answer.
Result<Notifications::Id> shown(DesktopNotifications& notifications, const Notification& notification,
                                Notifications::Id replacing) {
  std::optional<Result<Notifications::Id>> answer;
  notifications.show(notification, replacing, [&answer](Result<Notifications::Id> result) { answer = result; });
  EXPECT_TRUE(test::waitUntil([&answer] { return answer.has_value(); }, 30));
  return answer.value_or(Failure{"no answer"});
}

std::vector<unsigned char> redSquarePng() {
  QImage square(4, 4, QImage::Format_ARGB32);
  square.fill(Qt::red);
  QByteArray data;
  QBuffer buffer(&data);
  buffer.open(QIODevice::WriteOnly);
  square.save(&buffer, "PNG");
  return {data.begin(), data.end()};
}

} // namespace

// Against python-dbusmock's notification daemon: the call, its urgency, the
// picture as raw pixels, and replacement by id; with no daemon, the bus's
// error is the answer.
TEST(DesktopNotifications, NotifyWithUrgencyPictureAndReplacement) {
  test::PrivateBus bus(test::PrivateBus::Kind::session);
  LB_REQUIRE_SERVICE(bus.skipReason());
  DesktopNotifications notifications(bus.connect("lanternbud"));
  const Notification warning{
      .summary = "Lantern Buds: left bud at 15 %", .body = "Charge it soon.", .png = redSquarePng(), .critical = false};
  const auto nobody = shown(notifications, warning, 0);
  ASSERT_FALSE(nobody);
  EXPECT_NE(nobody.failure().reason.find("org.freedesktop.Notifications"), std::string::npos)
      << nobody.failure().reason;

  ASSERT_TRUE(bus.startNotifications());
  const auto first = shown(notifications, warning, 0);
  ASSERT_TRUE(first);
  auto critical = warning;
  critical.critical = true;
  critical.png.clear();
  const auto second = shown(notifications, critical, first.value());
  ASSERT_TRUE(second);
  EXPECT_EQ(second.value(), first.value());

  const auto calls = bus.notificationCalls();
  ASSERT_EQ(calls.size(), 2);
  EXPECT_EQ(calls[0].value(0).toString(), "Lanternbud");
  EXPECT_EQ(calls[0].value(1).toUInt(), 0u);
  EXPECT_EQ(calls[0].value(3).toString(), "Lantern Buds: left bud at 15 %");
  EXPECT_EQ(calls[1].value(1).toUInt(), first.value());
  const auto hints = [&calls](int call) { return qdbus_cast<QVariantMap>(calls[call].value(6)); };
  EXPECT_EQ(hints(0).value("urgency").toUInt(), 1u);
  EXPECT_EQ(hints(1).value("urgency").toUInt(), 2u);
  EXPECT_FALSE(hints(1).contains("image-data"));
  // (iiibiiay): 4 × 4 pixels, RGBA with alpha, the first one red.
  const auto image = hints(0).value("image-data").value<QDBusArgument>();
  int width = 0, height = 0, rowStride = 0, bits = 0, channels = 0;
  bool alpha = false;
  QByteArray pixels;
  image.beginStructure();
  image >> width >> height >> rowStride >> alpha >> bits >> channels >> pixels;
  image.endStructure();
  EXPECT_EQ(std::tuple(width, height, rowStride, alpha, bits, channels), std::tuple(4, 4, 16, true, 8, 4));
  ASSERT_EQ(pixels.size(), 64);
  EXPECT_EQ(pixels.left(4), QByteArray("\xff\x00\x00\xff", 4));
}

} // namespace lb
