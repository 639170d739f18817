#include "linux/logging/JournalLogSink.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <map>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace lb {

namespace {

// Stands in for journald on its real socket, so the test sees exactly what
// libsystemd sends. Only used where no journal is running.
class JournalSocket {
public:
  JournalSocket() {
    std::error_code error;
    if (std::filesystem::exists(JournalLogSink::socketPath, error)) {
      skipReason_ = "a journal is already listening on " + std::string(JournalLogSink::socketPath);
      return;
    }
    std::filesystem::path folder = std::filesystem::path(JournalLogSink::socketPath).parent_path();
    createdFolder_ = !std::filesystem::exists(folder);
    std::filesystem::create_directories(folder, error);
    descriptor_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, JournalLogSink::socketPath, sizeof address.sun_path - 1);
    if (error || descriptor_ < 0 || bind(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
      skipReason_ = "cannot listen on " + std::string(JournalLogSink::socketPath) +
                    " (run the tests as root on a machine without journald)";
      return;
    }
    bound_ = true;
    timeval timeout{5, 0};
    setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
  }
  ~JournalSocket() {
    if (descriptor_ >= 0) close(descriptor_);
    if (bound_) std::filesystem::remove(JournalLogSink::socketPath);
    if (createdFolder_) std::filesystem::remove_all(std::filesystem::path(JournalLogSink::socketPath).parent_path());
  }

  const std::string& skipReason() const { return skipReason_; }

  // One entry in the journal's native format: FIELD=value lines.
  std::map<std::string, std::string> receive() {
    std::string buffer(65'536, '\0');
    ssize_t length = recv(descriptor_, buffer.data(), buffer.size(), 0);
    std::map<std::string, std::string> fields;
    if (length <= 0) return fields;
    buffer.resize(static_cast<std::size_t>(length));
    std::size_t start = 0;
    while (start < buffer.size()) {
      auto end = buffer.find('\n', start);
      auto line = buffer.substr(start, end - start);
      auto equals = line.find('=');
      if (equals != std::string::npos) fields[line.substr(0, equals)] = line.substr(equals + 1);
      start = end == std::string::npos ? buffer.size() : end + 1;
    }
    return fields;
  }

private:
  int descriptor_ = -1;
  bool bound_ = false;
  bool createdFolder_ = false;
  std::string skipReason_;
};

} // namespace

TEST(JournalLogSink, SendsTheLineWithItsLocationAreaAndCategory) {
  JournalSocket journal;
  if (!journal.skipReason().empty()) GTEST_SKIP() << journal.skipReason(); // a real journal owns the socket

  auto sink = JournalLogSink::ifReachable("lanternbud");
  ASSERT_TRUE(sink);
  sink->write({std::chrono::system_clock::now(), "core/DeviceSetting.cpp", 42, "void toggleConnection()", "LogConnect",
               "Connecting 100% <DeviceSetting: Headset>"});
  auto fields = journal.receive();
  EXPECT_EQ(fields["MESSAGE"], "Connecting 100% <DeviceSetting: Headset>");
  EXPECT_EQ(fields["CODE_FILE"], "core/DeviceSetting.cpp");
  EXPECT_EQ(fields["CODE_LINE"], "42");
  EXPECT_EQ(fields["CODE_FUNC"], "void toggleConnection()");
  EXPECT_EQ(fields["PXR_AREA"], "LogConnect");
  EXPECT_EQ(fields["PXR_CATEGORY"], "PXRLogger");
  EXPECT_EQ(fields["SYSLOG_IDENTIFIER"], "lanternbud");

  sink->write({std::chrono::system_clock::now(), "f", 1, "g", std::nullopt, "an error"});
  auto error = journal.receive();
  EXPECT_EQ(error["PRIORITY"], "3");
  EXPECT_FALSE(error.contains("PXR_AREA"));
}

TEST(JournalLogSink, NoJournalMeansNoSink) {
  std::error_code error;
  if (std::filesystem::exists(JournalLogSink::socketPath, error)) {
    GTEST_SKIP() << "a journal is listening on this machine";
  }
  EXPECT_FALSE(JournalLogSink::ifReachable("lanternbud"));
}

} // namespace lb
