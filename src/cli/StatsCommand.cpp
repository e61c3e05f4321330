// stats: what the handhelds brought back, per route and in total, as a
// table for people or one JSON object for scripts.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/HifFile.h"
#include "exchange/clsExchange.h"
#include "hif/HifView.h"
#include "hif/ReadStats.h"

namespace hifx::cli {
namespace {

struct StatsOptions {
  std::string file;
  bool json = false;
};

// What the lists say of the counts: the skip code of each response code and
// how the handheld alerts on each condition.
struct SiteWords {
  std::vector<SkipCode> skipCodes;  // response code N is entry N-1
  std::string outOfRange, rollover, tamper;

  const SkipCode* SkipOf(int32_t responseCode) const {
    if (responseCode < 1 || static_cast<size_t>(responseCode) > skipCodes.size()) return nullptr;
    return &skipCodes[static_cast<size_t>(responseCode) - 1];
  }
};

std::string AlertWord(int16_t alert) {
  switch (alert) {
    case 0: return "No Alert";
    case 1: return "Beep";
    case 2: return "Popup Message!";
    default: return std::to_string(alert);
  }
}

// The skip list as a route conversion writes it into a file: live codes
// in the site's order.
std::vector<SkipCode> SiteSkipList(clsAdvanced& advanced) {
  std::vector<SkipCode> codes;
  SkipCode code;
  for (int16_t position = 1; advanced.GetSkip(Value::Integer(position), code.code, code.reason) >= 0; ++position) {
    if (!code.code.empty()) codes.push_back(code);
  }
  return codes;
}

// The file's own skip list names the codes; a file without one (a sorted
// file) is named by the site's.
SiteWords WordsOf(clsAdvanced& advanced, const ReadStats& stats) {
  return {stats.skipCodes.empty() ? SiteSkipList(advanced) : stats.skipCodes,
          AlertWord(advanced.AlertOutOfBounds()), AlertWord(advanced.AlertRollover()),
          AlertWord(advanced.AlertTamper())};
}

std::vector<std::string> RowOf(const std::string& route, const RouteReadStats& s) {
  std::vector<std::string> row{route};
  AppendShown(row.emplace_back(), s.name);
  for (const int32_t n : {s.meters, s.read, s.unread, s.skipped, s.radio, s.manual, s.probe, s.low, s.high,
                          s.rollover, s.tamper}) {
    row.push_back(std::to_string(n));
  }
  row.push_back(ReadingTimeText(s.first));
  row.push_back(ReadingTimeText(s.last));
  row.push_back(s.first ? SpanText(s.SpanSeconds()) : "-");
  return row;
}

void PrintText(const ReadStats& stats, const SiteWords& words) {
  std::vector<std::vector<std::string>> rows{{"Route", "Name", "Meters", "Read", "Unread", "Skipped", "Radio",
                                              "Manual", "Probe", "Low", "High", "Rollover", "Tamper",
                                              "First reading", "Last reading", "Span"}};
  for (const RouteReadStats& route : stats.routes) rows.push_back(RowOf(std::to_string(route.route), route));
  rows.push_back(RowOf("Total", stats.total));
  std::vector<bool> right(rows.front().size());
  std::fill(right.begin() + 2, right.begin() + 13, true);
  PrintTable(rows, right);
  if (!stats.total.skippedByCode.empty()) std::printf("\nSkipped by code:\n");
  for (const auto& [code, count] : stats.total.skippedByCode) {
    std::string shown;
    if (const SkipCode* skip = words.SkipOf(code)) AppendShown(shown, " " + skip->code + " " + skip->reason);
    std::printf("  %d%s: %d\n", code, shown.c_str(), count);
  }
  std::printf("\nOrphans: %d\n", stats.orphans);
  std::printf("Alerts: out of range %s, rollover %s, tamper %s\n", words.outOfRange.c_str(),
              words.rollover.c_str(), words.tamper.c_str());
}

std::string JsonTime(const std::optional<ReadingTime>& t) {
  if (!t) return "null";
  std::string text = ReadingTimeText(t);
  text[10] = 'T';
  return JsonText(text);
}

std::string JsonOf(const RouteReadStats& s, const SiteWords& words) {
  std::string out = "{";
  if (s.route != 0) AppendField(out, "route", std::to_string(s.route));
  if (s.route != 0) AppendField(out, "name", JsonText(s.name));
  const std::pair<const char*, int32_t> counts[] = {
      {"meters", s.meters}, {"read", s.read},   {"unread", s.unread}, {"skipped", s.skipped},
      {"radio", s.radio},   {"manual", s.manual}, {"probe", s.probe},  {"low", s.low},
      {"high", s.high},     {"rollover", s.rollover}, {"tamper", s.tamper}};
  for (const auto& [name, count] : counts) AppendField(out, name, std::to_string(count));
  std::string codes = "[";
  for (const auto& [code, count] : s.skippedByCode) {
    const SkipCode* skip = words.SkipOf(code);
    codes += codes.size() > 1 ? ",{" : "{";
    AppendField(codes, "responseCode", std::to_string(code));
    AppendField(codes, "code", skip ? JsonText(skip->code) : "null");
    AppendField(codes, "reason", skip ? JsonText(skip->reason) : "null");
    AppendField(codes, "meters", std::to_string(count));
    codes += '}';
  }
  AppendField(out, "skippedByCode", codes + "]");
  AppendField(out, "firstReading", JsonTime(s.first));
  AppendField(out, "lastReading", JsonTime(s.last));
  AppendField(out, "spanSeconds", std::to_string(s.SpanSeconds()));
  return out + "}";
}

void PrintJson(const std::string& file, const ReadStats& stats, const SiteWords& words) {
  std::string out = "{";
  AppendField(out, "file", JsonText(file));
  std::string routes = "[";
  for (const RouteReadStats& route : stats.routes) routes += (routes.size() > 1 ? "," : "") + JsonOf(route, words);
  AppendField(out, "routes", routes + "]");
  AppendField(out, "total", JsonOf(stats.total, words));
  AppendField(out, "orphans", std::to_string(stats.orphans));
  std::string alerts = "{";
  AppendField(alerts, "outOfRange", JsonText(words.outOfRange));
  AppendField(alerts, "rollover", JsonText(words.rollover));
  AppendField(alerts, "tamper", JsonText(words.tamper));
  AppendField(out, "alerts", alerts + "}");
  std::printf("%s}\n", out.c_str());
}

int Stats(Context& context, const StatsOptions& options) {
  SilentShell quiet;
  const ReadStats stats = CountReadings(quiet, options.file);
  const SiteWords words = WordsOf(context.Exchange().Advanced(), stats);
  if (options.json) {
    PrintJson(options.file, stats, words);
  } else {
    PrintText(stats, words);
  }
  std::fflush(stdout);
  return kExitOk;
}

}  // namespace

void AddStatsCommand(CommandTable& table) {
  auto options = std::make_shared<StatsOptions>();
  CLI::App& stats = table.Add("stats", "read statistics of a reading HIF, per route and in total",
                              [options](Context& context) {
                                return ReadingFile(options->file, [&] { return Stats(context, *options); });
                              });
  stats.add_flag("--json", options->json, "one JSON object instead of the table");
  stats.add_option("file", options->file, "the reading HIF file")->type_name("FILE")->required();
}

}  // namespace hifx::cli
