// The schema version that this program's files use, worked out from the
// program's own version.
#pragma once

#include <cstdint>

#include "base/Shell.h"

namespace hifx {

inline constexpr int16_t kProgramMajor = 3;
inline constexpr int16_t kProgramMinor = 0;

// The file version for a program version; a pair with no row shows a message
// and gives 0.
int16_t LookupFileVersion(IShell& shell, int16_t major, int16_t minor);

}  // namespace hifx
