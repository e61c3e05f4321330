// Sorting a full HIF: a file header, four route headers and the meters of
// four routes, every field of a meter set, rewritten by SortHIF.
//
//   sort/pdb_shuffled   a PDB of 32,762 meters, the most the reader takes with
//                       the five headers, in random Sequence order
//   sort/pdb_in_order   the same meters already in order
//   sort/vfs_shuffled   a VFS file of 32,767 meters in random order
//
// The file is put back before each run, outside the timing.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "base/AtomicFile.h"
#include "base/BinaryFile.h"
#include "base/Failure.h"
#include "base/Shell.h"
#include "base/Value.h"
#include "hif/SortHIF.h"
#include "hif/clsHIF.h"

namespace {

namespace fs = std::filesystem;
using hifx::clsHIF;
using hifx::Value;

constexpr int32_t kRoutes = 4;
constexpr int32_t kPdbMeters = 32767 - 1 - kRoutes;
constexpr int32_t kVfsMeters = 32767;

// Counts the message boxes beyond the one every sort shows.
class BenchShell final : public hifx::IShell {
 public:
  void WriteLog(std::string_view line) override { lastLog = std::string(line); }
  void SetProgressButton(int32_t, int32_t) override {}
  hifx::MsgAnswer MsgBox(std::string_view text, std::string_view, hifx::MsgButtons,
                         hifx::MsgIcon) override {
    if (text != "Indexes would need to be rebuilt") lastBox = std::string(text);
    return hifx::MsgAnswer::OK;
  }
  std::string lastLog;
  std::string lastBox;
};

std::string Record(BenchShell& shell, int32_t recType, int32_t route, int32_t sequence,
                   int32_t count, int32_t i) {
  clsHIF hif(shell);
  hif.SetVersion(3);
  hif.AddNew();
  hif.SetItem("RecType", Value::Long(recType));
  hif.SetItem("RouteNbr", Value::Long(route));
  hif.SetItem("Sequence", Value::Long(sequence));
  hif.SetItem("PrvReading", Value::Long(count));
  if (recType == hifx::kRecFileHeader) hif.SetItem("MeterType", Value::Long(3));
  if (recType == hifx::kRecMeter) {
    hif.SetItem("MeterTagNbr", Value::Long(500000 + i * 7));
    hif.SetItem("Digits", Value::Long(6));
    hif.SetItem("MaxReading", Value::Long(count + 2000));
    hif.SetItem("ServiceAddress", Value(std::to_string(100 + i % 9000) + " MAIN ST"));
    hif.SetItem("BillingName", Value("CUSTOMER " + std::to_string(i)));
    hif.SetItem("ServiceUniqueID", Value("SU" + std::to_string(10000000 + i)));
    hif.SetItem("MeterSerialNbr", Value("SN" + std::to_string(7000000 + i)));
    hif.SetItem("User1", Value("ACCT-" + std::to_string(100000 + i)));
  }
  return hif.RawData();
}

// Writes the file the sort starts from, once, and gives its bytes.
std::string SourceFile(int32_t fileType, int32_t meters, bool shuffled) {
  BenchShell shell;
  std::mt19937 random(4711);
  std::vector<int32_t> sequences(static_cast<size_t>(meters));
  for (int32_t i = 0; i < meters; ++i) sequences[static_cast<size_t>(i)] = (i + 1) * 10;
  if (shuffled) std::shuffle(sequences.begin(), sequences.end(), random);
  const fs::path path = fs::temp_directory_path() / ("hifx-sort-bench-" + std::to_string(random()));
  {
    clsHIF hif(shell);
    hif.CreateHIF(path, fileType, meters + 1 + kRoutes);
    auto write = [&](std::string bytes) {
      hif.SetRawData(std::move(bytes));
      hif.WriteData();
    };
    const int32_t perRoute = (meters + kRoutes - 1) / kRoutes;
    write(Record(shell, hifx::kRecFileHeader, kRoutes, 20240229, perRoute, 0));
    for (int32_t r = 1; r <= kRoutes; ++r) write(Record(shell, hifx::kRecRouteHeader, r, 0, perRoute, 0));
    for (int32_t i = 0; i < meters; ++i) {
      write(Record(shell, hifx::kRecMeter, 1 + i / perRoute, sequences[static_cast<size_t>(i)],
                   perRoute, i));
    }
  }
  std::string bytes = hifx::ReadWholeFile(path);
  fs::remove(path);
  return bytes;
}

void BM_Sort(benchmark::State& state, int32_t fileType, int32_t meters, bool shuffled) {
  const std::string source = SourceFile(fileType, meters, shuffled);
  const fs::path path = fs::temp_directory_path() / ("hifx-sort-bench-" + std::to_string(meters) +
                                                    (fileType == hifx::kFilePDB ? ".pdb" : ".vfs"));
  BenchShell shell;
  for (auto _ : state) {
    state.PauseTiming();
    hifx::ReplaceFile(path, source);
    state.ResumeTiming();
    try {
      if (hifx::SortHIF(shell, path, path) != hifx::SortOutcome::Sorted) {
        state.SkipWithError(("not sorted: " + shell.lastLog).c_str());
        break;
      }
    } catch (const hifx::Failure& failure) {
      state.SkipWithError(("sort failed: " + failure.Description()).c_str());
      break;
    }
    if (!shell.lastBox.empty()) {
      state.SkipWithError(("message box: " + shell.lastBox).c_str());
      break;
    }
  }
  std::error_code ec;
  state.counters["meters"] = meters;
  state.counters["file_kb"] = static_cast<double>(fs::file_size(path, ec)) / 1024.0;
  state.SetBytesProcessed(static_cast<int64_t>(source.size()) * state.iterations());
  fs::remove(path, ec);
}

BENCHMARK_CAPTURE(BM_Sort, pdb_shuffled, hifx::kFilePDB, kPdbMeters, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Sort, pdb_in_order, hifx::kFilePDB, kPdbMeters, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Sort, vfs_shuffled, hifx::kFileVFS, kVfsMeters, true)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
