// How a run of a front end ends: its exit code, and the words of a failure
// that reached it. One table for both front ends.
#pragma once

#include <exception>
#include <string>

#include "base/Failure.h"

namespace hifx::app {

inline constexpr int kExitOk = 0;
// The operation ran and did not complete: a conversion that returned False,
// a refused clash of files, a failed write, running out of memory.
inline constexpr int kExitNotComplete = 1;
// The run was given wrongly, or a file it reads can't be read as what it is:
// bad usage, a damaged or missing input, an unusable settings store.
inline constexpr int kExitUsage = 2;

int ExitCodeOf(FailureKind kind);

struct FailureReport {
  int exitCode;
  std::string words;
};

// What a failure that no frame took says and the code the run ends with:
// a Failure by its kind; running out of memory and anything else as a run
// that did not complete.
FailureReport ReportOf(const std::exception& failure);

}  // namespace hifx::app
