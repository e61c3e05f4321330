// Two route or reading HIFs compared meter by meter: the meters of an
// account are paired across the files by their serial number, then in their
// order; what is left over was added or removed. A pair tells of a move to
// another route, a new place in the sequence, and a meter changed out.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "base/Shell.h"

namespace hifx {

// What identifies a meter and where it stands in a file.
struct MeterPlace {
  std::string account;  // ServiceUniqueID
  std::string serial;   // MeterSerialNbr
  int32_t tag = 0;
  int32_t type = 0;
  int32_t digits = 0;
  int32_t route = 0;
  int32_t sequence = 0;
};

enum class MeterChange { Added, Removed, Moved, Resequenced, Replaced };

struct MeterDifference {
  MeterChange change;
  MeterPlace before;  // empty when added
  MeterPlace after;   // empty when removed
};

struct MeterDiff {
  std::vector<MeterDifference> differences;  // by change, then in the new file's order
  int32_t unchanged = 0;                     // pairs with no difference
  int32_t Count(MeterChange change) const;
};

// Every meter record of the file. Raises a failure of kind BadInput, naming
// the file, when it can't be read.
std::vector<MeterPlace> ReadMeterPlaces(IShell& shell, const std::filesystem::path& file);

MeterDiff CompareMeters(const std::vector<MeterPlace>& before, const std::vector<MeterPlace>& after);

// "before -> after", or the one value when they are the same.
std::string FromTo(const std::string& before, const std::string& after);
std::string FromTo(int32_t before, int32_t after);

// What a changed-out meter changed in besides its serial number, field by
// field: "tag 103 -> 109, digits 6 -> 5".
std::string ReplacedDetail(const MeterPlace& before, const MeterPlace& after);

// The word of a change, as the table and the JSON give it.
const char* ChangeWord(MeterChange change);

}  // namespace hifx
