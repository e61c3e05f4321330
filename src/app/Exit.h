// How a run of a front end ends: its exit code, and the words of a failure
// that reached it. One table for both front ends.
#pragma once

#include <exception>
#include <string>

#include "base/Failure.h"

namespace hifx::app {

// One meaning each, the same in every command; the codes above 1 are those
// of the BSD sysexits that scripts know.
inline constexpr int kExitOk = 0;
// The operation ran and did not complete as the system reports it: a
// conversion that returned False, a refused clash of files, running out of
// memory.
inline constexpr int kExitNotComplete = 1;
inline constexpr int kExitUsage = 64;        // the command line was given wrongly
inline constexpr int kExitBadInput = 65;     // a file read is damaged or not of its kind
inline constexpr int kExitNoInput = 66;      // a file to read is not there or can't be opened
inline constexpr int kExitCantCreate = 73;   // a file or folder to write can't be made
inline constexpr int kExitWriteFailed = 74;  // a read or write failed part way (a full disk)
inline constexpr int kExitBadSite = 78;      // the site's settings store or a map can't be used

struct ExitCode {
  int code;
  const char* meaning;
};

// Every exit code and what it means, as the manual and the help give them.
inline constexpr ExitCode kExitCodes[] = {
    {kExitOk, "the command did what it was asked"},
    {kExitNotComplete, "it ran and did not complete, as the log or the message says (\"Conversion Not Complete\")"},
    {kExitUsage, "the command line was given wrongly"},
    {kExitBadInput, "a file it reads is damaged or not of its kind"},
    {kExitNoInput, "a file it reads is not there or can't be opened"},
    {kExitCantCreate, "a file or folder it writes can't be made"},
    {kExitWriteFailed, "a read or write failed part way, such as on a full disk"},
    {kExitBadSite, "the site's settings store can't be opened or used"},
};

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
