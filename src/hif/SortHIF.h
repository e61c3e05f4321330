// Sorting a HIF: the meters of each route put in Sequence order, the file
// rewritten through a temporary file that takes its place at the end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

#include "base/Shell.h"

namespace hifx {

// One meter of the stretch being sorted: its Sequence, its ordinal in the
// stretch from 1, and where its bytes are held (from 1).
struct SortEntry {
  int32_t Sequence = 0;
  int32_t Ordinal = 0;
  int32_t Position = 0;
};

// -1, 0 or 1: by Sequence, then by ordinal.
int CompareEntries(const SortEntry& a, const SortEntry& b);

// Sorts entries[first..last] (both included) with the sort's own quick sort.
// Its pivot is the middle slot, not the entry first found there: a swap that
// moves the pivot entry changes what the rest of the pass compares with, so
// a stretch can come out not wholly in order. Sorted files have always come
// out that way, and they still do.
void QuickSort(std::span<SortEntry> entries, std::ptrdiff_t first, std::ptrdiff_t last);

// A new, empty file in the system's temporary folder. When the folder or the
// file can't be had, says so in a message box and returns an empty path.
std::filesystem::path TempFileName(IShell& shell);

enum class SortOutcome {
  Sorted,      // the named file now holds the sorted records
  NotRead,     // the reading source could not be opened; nothing changed
  NotCreated,  // the temporary file could not be created; nothing changed
};

// Rewrites fileName so that the meters of each route stand in Sequence order.
// File and route headers keep their places; every other record (code, index,
// alert) is left out, so indexes have to be built again. The schema version
// is the one of readingSource, the exchange's ReadingSource, and the meter
// count the PrvReading of fileName's first record. Reports through the log;
// a failure partway is raised and leaves fileName as it was.
SortOutcome SortHIF(IShell& shell, const std::filesystem::path& readingSource,
                    const std::filesystem::path& fileName);

}  // namespace hifx
