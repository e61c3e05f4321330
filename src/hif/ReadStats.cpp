#include "hif/ReadStats.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "base/DateSerial.h"
#include "base/Failure.h"
#include "base/Numbers.h"
#include "hif/ReadingOutcome.h"
#include "hif/clsHIF.h"

namespace hifx {
namespace {

// The fields counted, by their places in the file's schema, found once.
enum StatsField : size_t {
  sRecType, sRouteNbr, sStatus, sReadType, sCurReading, sDecimals, sReadingDate, sReadingTime, sPrvReading,
  sMinReading, sMaxReading, sResponseCode, sTamperCount, sInitials, kStatsFields
};
constexpr std::array<std::string_view, kStatsFields> kStatsFieldNames = {
    "RecType",    "RouteNbr",   "Status",       "ReadType",    "CurReading",   "Decimals",     "ReadingDate",
    "ReadingTime", "PrvReading", "MinReading", "MaxReading", "ResponseCode", "TamperCount", "Initials"};

struct Record {
  std::array<int16_t, kStatsFields> index{};
  std::array<Value, kStatsFields> value;
  int32_t Number(StatsField f) const { return NumberOf(value[f]); }
};

void CountMeter(const Record& r, RouteReadStats& stats) {
  ++stats.meters;
  const ReadingNumbers numbers{r.Number(sStatus),     r.Number(sReadType),   WholeReading(r.Number(sCurReading), r.Number(sDecimals)),
                               r.Number(sReadingDate), r.Number(sMinReading), r.Number(sMaxReading),
                               r.Number(sPrvReading),  r.Number(sResponseCode)};
  if (r.Number(sTamperCount) != 0) ++stats.tamper;
  switch (FieldOutcomeOf(numbers)) {
    case ReadingOutcome::Missed: ++stats.unread; return;
    case ReadingOutcome::Skipped:
      ++stats.skipped;
      ++stats.skippedByCode[numbers.responseCode];
      return;
    case ReadingOutcome::Low: ++stats.low; break;
    case ReadingOutcome::High: ++stats.high; break;
    case ReadingOutcome::Rollover: ++stats.rollover; break;
    default: break;
  }
  ++stats.read;
  if (numbers.readType == kReadRadio) ++stats.radio;
  if (numbers.readType == kReadManual) ++stats.manual;
  if (numbers.readType == kReadProbe) ++stats.probe;
  const ReadingTime when{numbers.date, r.Number(sReadingTime)};
  if (!stats.first || when < *stats.first) stats.first = when;
  if (!stats.last || *stats.last < when) stats.last = when;
}

RouteReadStats& RouteOf(std::map<int32_t, RouteReadStats>& routes, int32_t route) {
  RouteReadStats& stats = routes[route];
  stats.route = route;
  return stats;
}

// The skip codes the handhelds chose from, when the file still carries them.
void KeepSkipList(clsHIF& hif, std::vector<SkipCode>& codes) {
  const CodeRecord record = ReadCodeRecord(hif.RawData());
  if (record.group != 0 || !codes.empty()) return;
  for (const auto& entry : record.entries) codes.push_back({entry[0], entry[1]});
}

double SerialOf(const ReadingTime& t) {
  return DateSerial(t.date / 10000, t.date / 100 % 100, t.date % 100) +
         TimeSerial(t.time / 10000, t.time / 100 % 100, t.time % 100);
}

}  // namespace

void RouteReadStats::Add(const RouteReadStats& o) {
  for (auto [mine, theirs] : {std::pair(&meters, o.meters), std::pair(&read, o.read), std::pair(&unread, o.unread),
                              std::pair(&skipped, o.skipped), std::pair(&radio, o.radio), std::pair(&manual, o.manual),
                              std::pair(&probe, o.probe), std::pair(&low, o.low), std::pair(&high, o.high),
                              std::pair(&rollover, o.rollover), std::pair(&tamper, o.tamper)}) {
    *mine += theirs;
  }
  for (const auto& [code, count] : o.skippedByCode) skippedByCode[code] += count;
  if (o.first && (!first || *o.first < *first)) first = o.first;
  if (o.last && (!last || *last < *o.last)) last = o.last;
}

int64_t RouteReadStats::SpanSeconds() const {
  if (!first || !last) return 0;
  return std::llround((SerialOf(*last) - SerialOf(*first)) * 86400.0);
}

std::string ReadingTimeText(const std::optional<ReadingTime>& t) {
  if (!t) return "-";
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", t->date / 10000, t->date / 100 % 100,
                t->date % 100, t->time / 10000, t->time / 100 % 100, t->time % 100);
  return text;
}

std::string SpanText(int64_t seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", static_cast<long long>(seconds / 3600),
                static_cast<long long>(seconds / 60 % 60), static_cast<long long>(seconds % 60));
  return text;
}

ReadStats CountReadings(IShell& shell, const std::filesystem::path& file) {
  clsHIF hif(shell);
  OpenToRead(hif, file);
  Record r;
  clsPalmDB& db = hif.DB();
  for (size_t f = 0; f < kStatsFields; ++f) r.index[f] = db.FindItem(kStatsFieldNames[f]);
  std::map<int32_t, RouteReadStats> routes;
  ReadStats stats;
  while (hif.ReadData()) {
    for (size_t f = 0; f < kStatsFields; ++f) r.value[f] = db.Item(static_cast<int32_t>(r.index[f]));
    switch (r.Number(sRecType)) {
      case kRecRouteHeader:
      case kRecRouteHeaderAlt: RouteOf(routes, r.Number(sRouteNbr)).name = TextOf(r.value[sInitials]); break;
      case kRecMeter: CountMeter(r, RouteOf(routes, r.Number(sRouteNbr))); break;
      case kRecOrphan: ++stats.orphans; break;
      case kRecCodes: KeepSkipList(hif, stats.skipCodes); break;
      default: break;
    }
  }
  for (auto& [number, route] : routes) {
    stats.total.Add(route);
    stats.routes.push_back(std::move(route));
  }
  return stats;
}

}  // namespace hifx
