#include "hif/SortHIF.h"

#include <cerrno>
#include <cstdio>
#include <random>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "base/AtomicFile.h"
#include "base/BinaryFile.h"
#include "base/Failure.h"
#include "hif/clsHIF.h"

#ifdef _WIN32
#include <windows.h>
#undef ReplaceFile  // windows.h's name for ReplaceFileA, not ours
#endif

namespace hifx {
namespace {

// The sort's progress is the last third of a route conversion's bar.
constexpr int32_t kProgressTotal = 765;
constexpr int32_t kProgressStart = 510;

// The temporary file goes when the sort ends, whichever way it ends.
class TemporaryFile {
 public:
  TemporaryFile() = default;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (path.empty()) return;
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
  }

  std::filesystem::path path;
};

// Copies one record's bytes to the end of the destination.
void CopyRecord(clsHIF& destination, std::string bytes) {
  destination.AddNew();
  destination.SetRawData(std::move(bytes));
  destination.WriteData();
}

// The most meters a route may have here: the file header's PrvReading. A
// version-0 file has no such field, and its null count is a failure.
int32_t ReadMeterCount(IShell& shell, int16_t version, const std::filesystem::path& fileName) {
  clsHIF header(shell);
  header.SetVersion(version);
  // Whether the open worked shows at the read.
  (void)header.OpenHIF(fileName);
  header.ReadData();
  return header.Item("PrvReading").ToInt32();
}

// One stretch of one route at a time: its records' bytes, and an entry a
// meter to sort them by.
struct SortStretch {
  std::vector<SortEntry> entries;
  std::vector<std::string> records;
  int32_t route = -1;  // none yet
};

}  // namespace

int CompareEntries(const SortEntry& a, const SortEntry& b) {
  if (a.Sequence != b.Sequence) return a.Sequence < b.Sequence ? -1 : 1;
  if (a.Ordinal != b.Ordinal) return a.Ordinal < b.Ordinal ? -1 : 1;
  return 0;
}

void QuickSort(std::span<SortEntry> entries, std::ptrdiff_t first, std::ptrdiff_t last) {
  const auto at = [&entries](std::ptrdiff_t k) -> SortEntry& { return entries[static_cast<size_t>(k)]; };
  while (first < last) {
    std::ptrdiff_t i = first;
    std::ptrdiff_t j = last;
    const std::ptrdiff_t m = (first + last) / 2;  // the slot, not its entry
    while (i <= j) {
      while (i < last && CompareEntries(at(i), at(m)) < 0) ++i;
      while (j > first && CompareEntries(at(m), at(j)) < 0) --j;
      if (i > j) break;
      if (i < j) std::swap(at(i), at(j));
      ++i;
      --j;
    }
    // The two parts don't overlap, so the order they are sorted in makes no
    // difference: the smaller goes first, the larger round this loop, which
    // keeps the stack shallow.
    if (j - first < last - i) {
      if (first < j) QuickSort(entries, first, j);
      first = i;
    } else {
      if (i < last) QuickSort(entries, i, last);
      last = j;
    }
  }
}

#ifdef _WIN32
std::filesystem::path TempFileName(IShell& shell) {
  char folder[255] = {};
  if (GetTempPathA(sizeof folder, folder) == 0) shell.MsgBox("Error getting directory");
  char name[MAX_PATH] = {};
  // Windows makes the file, empty, so the name is ours once this returns.
  if (GetTempFileNameA(folder, "tmp", 0, name) == 0) {
    shell.MsgBox("Error getting file");
    return {};
  }
  return name;
}
#else
std::filesystem::path TempFileName(IShell& shell) {
  std::error_code ec;
  std::filesystem::path folder = std::filesystem::temp_directory_path(ec);
  if (ec) {
    shell.MsgBox("Error getting directory");
    folder.clear();
  }
  if (!folder.empty()) {
    // "tmp", four hex digits, ".tmp", made here and empty, so the name is
    // ours once this returns.
    std::random_device random;
    const unsigned start = random();
    for (unsigned k = 0; k < 0x10000; ++k) {
      const unsigned unique = (start + k) & 0xFFFF;
      if (unique == 0) continue;
      char name[16];
      std::snprintf(name, sizeof name, "tmp%04X.tmp", unique);
      const std::filesystem::path candidate = folder / name;
      errno = 0;
      if (std::FILE* file = std::fopen(candidate.string().c_str(), "wbx")) {
        std::fclose(file);
        return candidate;
      }
      if (errno != EEXIST) break;
    }
  }
  shell.MsgBox("Error getting file");
  return {};
}
#endif

namespace {

// The stretch's records, in sorted order, to the end of the destination.
void FlushStretch(SortStretch& stretch, clsHIF& destination) {
  QuickSort(stretch.entries, 0, static_cast<std::ptrdiff_t>(stretch.entries.size()) - 1);
  for (const SortEntry& entry : stretch.entries) {
    CopyRecord(destination, std::move(stretch.records[static_cast<size_t>(entry.Position) - 1]));
  }
}

// A meter into the stretch. A change of route ends the stretch, so a route
// that the file interrupts is sorted a stretch at a time.
void TakeMeter(SortStretch& stretch, clsHIF& source, clsHIF& destination, int32_t meterCount) {
  const int32_t route = source.Item("RouteNbr").ToInt32();
  if (route != stretch.route) {
    if (stretch.route > -1) FlushStretch(stretch, destination);
    stretch.records.clear();
    stretch.entries.clear();
    stretch.route = route;
  }
  const int32_t sequence = source.Item("Sequence").ToInt32();
  if (std::cmp_greater_equal(stretch.entries.size(), meterCount)) {
    throw Failure(fail::kSubscript);
  }
  stretch.records.push_back(source.RawData());
  const auto held = static_cast<int32_t>(stretch.records.size());
  stretch.entries.push_back({sequence, held, held});
}

// Every record of the source that a sort keeps, to the destination: the
// file and route headers as they stand, the meters sorted.
void CopySorted(IShell& shell, clsHIF& source, clsHIF& destination, int32_t meterCount) {
  SortStretch stretch;
  while (source.ReadData()) {
    shell.SetProgressButton(kProgressTotal, source.Position255() + kProgressStart);
    // A record too short for its RecType reads it as empty, which counts
    // as 0: it is copied as a file header is.
    const int32_t recType = source.Item("RecType").ToInt32();
    if (recType == kRecFileHeader || recType == kRecRouteHeader) {
      CopyRecord(destination, source.RawData());
    } else if (recType == kRecMeter) {
      TakeMeter(stretch, source, destination, meterCount);
    }
    // Every other record is left out: code, index and alert records.
  }
  FlushStretch(stretch, destination);
}

}  // namespace

SortOutcome SortHIF(IShell& shell, const std::filesystem::path& readingSource,
                    const std::filesystem::path& fileName) {
  // Code and index records don't survive a sort.
  shell.MsgBox("Indexes would need to be rebuilt");

  const int16_t version = ReadFileVersion(shell, readingSource);
  if (version < 0) {
    shell.WriteLog("Error: Could not read HIF file for sorting");
    return SortOutcome::NotRead;
  }
  const int32_t meterCount = ReadMeterCount(shell, version, fileName);

  TemporaryFile temporary;
  {
    clsHIF source(shell);
    source.SetVersion(version);
    (void)source.OpenHIF(fileName);
    clsHIF destination(shell);
    destination.SetVersion(version);
    temporary.path = TempFileName(shell);
    const int32_t fileType = source.GetType();
    if (destination.CreateHIF(temporary.path, fileType, source.RecordCount()) != 0) {
      shell.WriteLog("Error: Could not create temporary HIF file for sorting");
      return SortOutcome::NotCreated;
    }
    CopySorted(shell, source, destination, meterCount);
    destination.FinishHIF();  // the sorted copy on the disk, checked
  }  // both files closed

  // The named file is replaced only now, whole: until here it is untouched.
  ReplaceFile(fileName, ReadWholeFile(temporary.path));
  return SortOutcome::Sorted;
}

}  // namespace hifx
