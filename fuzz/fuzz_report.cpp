// The four meter reports of any bytes taken as a reading HIF, laid out on a
// recording printer. "Could not read" is a clean outcome; a crash, a hang or
// a runaway allocation is a bug.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "base/Failure.h"
#include "reports/RecordingDevice.h"
#include "reports/clsReport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("hifx-fuzz-report-" + std::to_string(::getpid()) + ".pdb");
  {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  hifx::SilentShell shell;
  const hifx::FixedClock clock{hifx::CivilTime{2024, 2, 29, 13, 5, 9}};
  hifx::RecordingPrinters printers;
  hifx::MemoryUserSettings settings;
  hifx::clsReport report(shell, clock, printers, settings);
  try {
    report.Begin(false, file, hifx::kReportException | hifx::kReportReading | hifx::kReportOrphan |
                                  hifx::kReportMissed, "");
  } catch (const hifx::Failure&) {
    // A damaged file may stop the run with the engine's failure.
  }
  return 0;
}

// A smaller quarantine of freed memory than the default 256 MB, which with
// the fuzzer's own memory would pass its 512 MB limit.
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=64"; }
