#include "linux/logging/JournalLogSink.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <map>
#include <sstream>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace lb {

namespace {

// Stands in for journald on its real socket, so the test sees exactly what
// libsystemd sends. Only for a machine where no journal runs.
struct JournalSocket {
  const std::filesystem::path folder = std::filesystem::path(JournalLogSink::socketPath).parent_path();
  const bool createdFolder = !std::filesystem::exists(folder);
  const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  bool listening = false;

  JournalSocket() {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, JournalLogSink::socketPath, sizeof address.sun_path - 1);
    listening = !error && bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    timeval timeout{5, 0};
    setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
  }
  ~JournalSocket() {
    close(descriptor);
    if (listening) std::filesystem::remove(JournalLogSink::socketPath);
    if (createdFolder) std::filesystem::remove_all(folder);
  }

  // One entry in the journal's native format: FIELD=value lines.
  std::map<std::string, std::string> receive() {
    std::string buffer(65'536, '\0');
    buffer.resize(std::max<ssize_t>(recv(descriptor, buffer.data(), buffer.size(), 0), 0));
    std::map<std::string, std::string> fields;
    std::istringstream lines(buffer);
    for (std::string line; std::getline(lines, line);) {
      if (auto equals = line.find('='); equals != std::string::npos)
        fields[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return fields;
  }
};

} // namespace

// Only where a journal listens is there a sink.
TEST(JournalLogSink, SendsTheLineWithItsLocationAreaAndCategory) {
  std::error_code ignored;
  if (std::filesystem::exists(JournalLogSink::socketPath, ignored)) GTEST_SKIP() << "a journal listens on this machine";
  EXPECT_FALSE(JournalLogSink::ifReachable("lanternbud"));
  JournalSocket journal;
  if (!journal.listening) GTEST_SKIP() << "cannot listen on the socket (run as root on a machine without journald)";

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

} // namespace lb
