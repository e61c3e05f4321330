// A route file checked as its conversion reads it, with nothing of the
// user's written: every fault of every line (not only the fifty the
// conversion shows), and whether the conversion would make the file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "hif/MeterDiff.h"

namespace hifx {

// Kinds of fault, as the check's summary counts them.
inline constexpr const char* kFaultOverMaximum = "over maximum";
inline constexpr const char* kFaultZero = "zero";
inline constexpr const char* kFaultEmpty = "empty";
inline constexpr const char* kFaultDuplicateTag = "duplicate tag";
inline constexpr const char* kFaultStop = "stop";  // the conversion ends on it

struct RouteFault {
  int32_t line = 0;  // 0: the file as a whole
  std::string field;
  std::string value;
  std::string kind;
  std::string message;  // the conversion's own words
};

struct RouteCheck {
  // A plain list of meters to visit again, read as its re-read conversion
  // reads it, rather than a route file.
  bool rereadList = false;
  // The last readings to hold the route against, when given: the meters
  // changed out since, and the meters new or gone, go to changes.
  std::filesystem::path since;
  std::vector<MeterDifference> changes;

  std::vector<RouteFault> faults;
  // The first reason the conversion would not make the file; empty when it
  // would.
  std::string stop;
  int32_t lines = 0;
  int32_t routes = 0;
  int32_t meters = 0;

  bool Converts() const { return stop.empty(); }
  void Fault(RouteFault fault) { faults.push_back(std::move(fault)); }
  void Stop(const std::string& why) {
    if (stop.empty()) stop = why;
  }
  std::map<std::string, int32_t> CountByKind() const {
    std::map<std::string, int32_t> counts;
    for (const RouteFault& fault : faults) ++counts[fault.kind];
    return counts;
  }
};

// The check's counts and its faults by kind, as one line: "5 lines,
// 3 routes, 5 meters; 2 faults: 1 empty, 1 zero".
std::string CheckSummary(const RouteCheck& check);
// Whether the route would convert, with warnings or not, or why not.
std::string CheckVerdict(const RouteCheck& check);

// A meter changed out, new or gone since the last readings, as one line;
// append adds a text of the files to the line (as it is, or made safe for a
// terminal).
using AppendText = std::function<void(std::string& line, const std::string& text)>;
std::string ChangeLine(const MeterDifference& change, const AppendText& append);
// The counts of the changes: "Since FILE: 1 changed out, 0 new, 2 gone".
std::string ChangesSummary(const RouteCheck& check);

// The faults as CSV for a spreadsheet: a header row Line,Field,Value,Kind,
// Message, then one row a fault; a field holding a comma, a quote or a line
// break quoted, its quotes doubled; every row ends in CR LF.
std::string FaultsCsv(const RouteCheck& check);

}  // namespace hifx
