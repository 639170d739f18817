// The diagnostic report's journal extracts from a journal of N entries over
// the last four hours (systemd-journal-remote writes it from the export
// format, as journald would): entries read per second, with addresses
// masked, and the size of the three files.
//   journal_extract_benchmark [entries]   (default 200000)
#include "foundation/BluetoothAddress.h"
#include "linux/report/PXRLogStoreExtractor.h"
#include "tests/support/TemporaryDirectory.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

using namespace lb;
using namespace std::chrono;

int main(int argc, char** argv) {
  const long entries = argc > 1 ? std::atol(argv[1]) : 200'000;
  test::TemporaryDirectory folder;
  const auto now = system_clock::now();
  {
    std::ofstream exported(folder / "export.txt");
    for (long i = 0; i < entries; ++i) {
      const auto offset = microseconds(static_cast<long long>(i) * 239LL * 60'000'000LL / entries);
      const auto when = duration_cast<microseconds>((now - minutes(239) + offset).time_since_epoch()).count();
      exported << "__REALTIME_TIMESTAMP=" << when << "\n__MONOTONIC_TIMESTAMP=" << i + 1
               << "\n_BOOT_ID=0123456789abcdef0123456789abcdef\nPRIORITY=" << (i % 8)
               << "\nSYSLOG_IDENTIFIER=bluetoothd\n_EXE=/usr/libexec/bluetooth/bluetoothd\n"
               << (i % 10 == 0 ? "PXR_CATEGORY=PXRLogger\nPXR_AREA=LogConnect\n" : "")
               << "MESSAGE=Connection of 00:1B:66:AA:BB:" << (10 + i % 90) << " number " << i << "\n\n";
    }
  }
  std::filesystem::create_directory(folder / "journal");
  const auto command = "/lib/systemd/systemd-journal-remote -o '" + (folder / "journal/bench.journal").string() +
                       "' '" + (folder / "export.txt").string() + "' 2> /dev/null";
  if (std::system(command.c_str()) != 0) {
    std::fprintf(stderr, "cannot run systemd-journal-remote: scripts/install-deps installs it\n");
    return 1;
  }
  PXRLogStoreExtractor::Options options;
  options.directory = folder / "journal";
  options.accessToAllLogs = true;
  options.now = now;
  options.transform = [](std::string line) { return BluetoothAddress::masked(line); };
  std::filesystem::create_directory(folder / "out");
  const auto start = steady_clock::now();
  const auto files = PXRLogStoreExtractor::writeLogs(folder / "out", options);
  const double seconds = duration<double>(steady_clock::now() - start).count();
  std::printf("%ld entries in four hours: the three extracts in %.2f s\n", entries, seconds);
  for (const auto& file : files)
    std::printf("  %-20s %8.1f MB\n", file.filename().c_str(),
                static_cast<double>(std::filesystem::file_size(file)) / 1e6);
  return 0;
}
