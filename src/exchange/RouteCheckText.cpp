// The route check in words: the summary and verdict the check command
// prints and the desktop's check window shows, the changes since the last
// readings, and the faults as CSV.
#include <algorithm>
#include <string>

#include "base/Csv.h"
#include "exchange/RouteCheck.h"

namespace hifx {
namespace {

std::string Count(int64_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace

std::string CheckSummary(const RouteCheck& check) {
  std::string kinds;
  for (const auto& [kind, count] : check.CountByKind()) {
    kinds += (kinds.empty() ? ": " : ", ") + std::to_string(count) + " " + kind;
  }
  const auto whole = [](int32_t n) { return static_cast<int64_t>(std::max(n, 0)); };
  return Count(whole(check.lines), "line", "lines") + ", " + Count(whole(check.routes), "route", "routes") + ", " +
         Count(whole(check.meters), "meter", "meters") + "; " +
         Count(static_cast<int64_t>(check.faults.size()), "fault", "faults") + kinds;
}

std::string CheckVerdict(const RouteCheck& check) {
  if (!check.Converts()) return "The route would not convert: " + check.stop;
  if (!check.faults.empty()) return "The route would convert, with warnings.";
  return "The route would convert.";
}

std::string ChangeLine(const MeterDifference& change, const AppendText& append) {
  const MeterPlace& m = change.change == MeterChange::Removed ? change.before : change.after;
  std::string line = change.change == MeterChange::Replaced ? "changed out"
                     : change.change == MeterChange::Added  ? "new"
                                                            : "gone";
  line += ": ";
  // A meter of a re-read list may come by its tag alone.
  if (!m.account.empty()) {
    line += "account ";
    append(line, m.account);
    line += ", ";
  }
  line += "route " + std::to_string(m.route) + ", sequence " + std::to_string(m.sequence) + ": ";
  if (change.change != MeterChange::Replaced) {
    if (!m.serial.empty()) {
      line += "meter ";
      append(line, m.serial);
      line += ", ";
    }
    return line + "tag " + std::to_string(m.tag);
  }
  line += "meter ";
  append(line, FromTo(change.before.serial, m.serial));
  const std::string detail = ReplacedDetail(change.before, m);
  if (!detail.empty()) line += ", " + detail;
  return line;
}

std::string ChangesSummary(const RouteCheck& check) {
  const auto count = [&](MeterChange kind) {
    return std::to_string(std::count_if(check.changes.begin(), check.changes.end(),
                                        [&](const MeterDifference& d) { return d.change == kind; }));
  };
  return "Since " + check.since.string() + ": " + count(MeterChange::Replaced) + " changed out, " +
         count(MeterChange::Added) + " new, " + count(MeterChange::Removed) + " gone";
}

// A fault of the file as a whole has no line: its cell stays empty.
std::string FaultsCsv(const RouteCheck& check) {
  std::string out;
  AppendCsvRecord(out, {"Line", "Field", "Value", "Kind", "Message"});
  for (const RouteFault& f : check.faults) {
    AppendCsvRecord(out, {f.line == 0 ? std::string() : std::to_string(f.line), f.field, f.value, f.kind, f.message});
  }
  return out;
}

}  // namespace hifx
