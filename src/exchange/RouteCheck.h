// A route file checked as its conversion reads it, with nothing of the
// user's written: every fault of every line (not only the fifty the
// conversion shows), and whether the conversion would make the file.
#pragma once

#include <cstdint>
#include <filesystem>
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

}  // namespace hifx
