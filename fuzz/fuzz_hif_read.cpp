// Any bytes, read as a HIF the way `hifx dump`, `view`, `stats`, `diff` and
// `plot` read one, opened as each container (PDB and VFS) whatever its first
// bytes say, and sorted in place the way `hifx sort` sorts one.
//
// A Failure is the clean answer to a damaged file. Anything else is a bug: a
// crash, a sanitizer report, another exception escaping, a leak, a hang, or
// an allocation out of proportion to the input.
//
// Run it with a memory cap and a length limit, e.g.
//   fuzz_hif_read CORPUS_DIR -rss_limit_mb=512 -max_len=65536 -timeout=10
// (fuzz/run.sh does so). -rss_limit_mb catches a reader that sizes a buffer
// from a damaged count; -max_len keeps inputs near the size of real routes'
// headers and tables.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "base/Failure.h"
#include "base/Shell.h"
#include "handheld/clsPalmFilePDB.h"
#include "handheld/clsPalmFileVFS.h"
#include "hif/HifView.h"
#include "hif/MeterDiff.h"
#include "hif/MeterPlot.h"
#include "hif/ReadStats.h"
#include "hif/SortHIF.h"
#include "hif/clsHIF.h"

namespace {

// Says nothing; every message box is answered OK, as a person would.
class FuzzShell final : public hifx::IShell {
 public:
  void WriteLog(std::string_view) override {}
  void SetProgressButton(int32_t, int32_t) override {}
  hifx::MsgAnswer MsgBox(std::string_view, std::string_view, hifx::MsgButtons,
                         hifx::MsgIcon) override {
    return hifx::MsgAnswer::OK;
  }
};

// One file a process, rewritten for every input and removed at exit.
const std::filesystem::path& InputPath() {
  static const std::filesystem::path path = [] {
    std::filesystem::path p = std::filesystem::temp_directory_path() /
                              ("fuzz_hif_read." + std::to_string(::getpid()) + ".hif");
    std::atexit([] {
      std::error_code ec;
      std::filesystem::remove(InputPath(), ec);
    });
    return p;
  }();
  return path;
}

bool WriteInput(const uint8_t* data, size_t size) {
  std::FILE* file = std::fopen(InputPath().c_str(), "wb");
  if (file == nullptr) return false;
  const bool ok = size == 0 || std::fwrite(data, 1, size, file) == size;
  return std::fclose(file) == 0 && ok;
}

// As `hifx dump`: the schema version from the first record, then every
// record as JSON.
size_t Dump(hifx::IShell& shell, const std::filesystem::path& path) {
  size_t bytes = 0;
  try {
    const int16_t version = hifx::ReadFileVersion(shell, path);
    if (version < 0) return 0;
    hifx::clsHIF hif(shell);
    hif.SetVersion(version);
    if (hif.OpenHIF(path)) return 0;
    while (hif.ReadData()) bytes += hifx::RecordToJson(hif).size();
  } catch (const hifx::Failure&) {
    // a damaged file, refused cleanly
  }
  return bytes;
}

// As `hifx view FILE --route 1`: the route table, then the meters of route 1.
size_t View(hifx::IShell& shell, const std::filesystem::path& path) {
  size_t cells = 0;
  try {
    hifx::HifView view(shell);
    if (view.Display(path)) {
      cells += view.Routes().rows.size();
      const hifx::TextTable meters = view.Meters(1);
      for (const auto& row : meters.rows) cells += row.size();
    }
  } catch (const hifx::Failure&) {
    // a damaged file, refused cleanly
  }
  return cells;
}

// As `hifx stats FILE`: every meter counted, the skip list kept.
size_t Stats(hifx::IShell& shell, const std::filesystem::path& path) {
  try {
    const hifx::ReadStats stats = hifx::CountReadings(shell, path);
    return stats.routes.size() + stats.skipCodes.size() + static_cast<size_t>(stats.total.SpanSeconds() & 1);
  } catch (const hifx::Failure&) {
    return 0;  // a damaged file, refused cleanly
  }
}

// As `hifx diff FILE FILE`: the meters read and paired with themselves.
size_t Diff(hifx::IShell& shell, const std::filesystem::path& path) {
  try {
    const auto meters = hifx::ReadMeterPlaces(shell, path);
    return static_cast<size_t>(hifx::CompareMeters(meters, meters).unchanged);
  } catch (const hifx::Failure&) {
    return 0;  // a damaged file, refused cleanly
  }
}

// As `hifx plot FILE --svg OUT`: the meters read and drawn.
size_t Plot(hifx::IShell& shell, const std::filesystem::path& path) {
  try {
    return hifx::PlotSvg("fuzz", hifx::ReadPlotMeters(shell, path)).size();
  } catch (const hifx::Failure&) {
    return 0;  // a damaged file, refused cleanly
  }
}

// The container alone, taken as the kind given: its header and every record.
// A detected open picks VFS only for a file that starts with a record
// length, so this is what reaches the VFS reader with anything else.
size_t Container(hifx::IPalmFile& file, const std::filesystem::path& path) {
  size_t bytes = 0;
  try {
    if (file.OpenFile(path) != 0) return 0;
    bytes += file.Title().size() + file.Creator().size() + file.DBType().size() + file.AppInfo().size() +
             file.SortInfo().size();
    bytes += static_cast<size_t>(file.RecordCount() + file.Attributes() + file.Position255());
    volatile double dates = file.CreateDate() + file.ModifyDate() + file.BackupDate();
    (void)dates;
    // In sequence (number -1), then by number, last from past the end.
    std::string data;
    for (int32_t number = -1; file.ReadRecord(number, data); number = -1) bytes += data.size();
    for (int32_t number : {0, 1, static_cast<int32_t>(file.RecordCount()) - 1, 32767}) {
      if (file.ReadRecord(number, data)) bytes += data.size();
    }
  } catch (const hifx::Failure&) {
    // a damaged file, refused cleanly
  }
  file.CloseFile();
  return bytes;
}

// As `hifx sort FILE`: the file is its own reading source and is rewritten
// only when it sorts whole.
void Sort(hifx::IShell& shell, const std::filesystem::path& path) {
  try {
    hifx::SortHIF(shell, path, path);
  } catch (const hifx::Failure&) {
    // the run's error frame: the file stays as it was
  }
}

}  // namespace

// A damaged record table can claim 32767 records that all read empty, and
// each empty field read raises and catches a failure: one input then frees
// some hundreds of megabytes in small blocks. The address sanitizer's
// default quarantine of freed memory (256 MB) would alone go past
// -rss_limit_mb=512 with the fuzzer's own memory; 64 MB still holds many
// inputs' worth of freed blocks.
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=64"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!WriteInput(data, size)) {
    std::fprintf(stderr, "fuzz_hif_read: cannot write %s\n", InputPath().c_str());
    std::abort();
  }
  FuzzShell shell;
  volatile size_t sink = Dump(shell, InputPath());
  sink = sink + View(shell, InputPath());
  sink = sink + Stats(shell, InputPath());
  sink = sink + Diff(shell, InputPath());
  sink = sink + Plot(shell, InputPath());
  hifx::clsPalmFilePDB pdb;
  sink = sink + Container(pdb, InputPath());
  hifx::clsPalmFileVFS vfs;
  sink = sink + Container(vfs, InputPath());
  (void)sink;
  // Last, as it may rewrite the file.
  Sort(shell, InputPath());
  return 0;
}
