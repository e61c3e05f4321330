#include "tools/FillReadings.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <unordered_set>
#include <vector>

#include "base/Failure.h"
#include "base/Value.h"
#include "hif/clsHIF.h"

namespace hifx {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

// SplitMix64: small and fully specified, so a seed gives the same numbers
// with every compiler and library (the standard distributions don't).
class Generator {
 public:
  explicit Generator(uint64_t state) : state_(state) {}

  uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15ULL;
    return Mix(state_);
  }
  // From 0 to n - 1; 0 when n is 0.
  uint64_t Below(uint64_t n) { return n == 0 ? 0 : Next() % n; }
  // From low to high, both included.
  int64_t Between(int64_t low, int64_t high) {
    if (high <= low) return low;
    return low + static_cast<int64_t>(Below(static_cast<uint64_t>(high - low) + 1));
  }

  static uint64_t Mix(uint64_t z) {
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }

 private:
  uint64_t state_;
};

// One stream of numbers for each purpose and each meter, route or orphan, so
// that what one meter gets doesn't depend on how many numbers another took.
enum class Stream : uint64_t { Choice = 1, Route = 2, Meter = 3, Orphan = 4, SkipCode = 5 };

Generator StreamOf(uint32_t seed, Stream stream, uint64_t index) {
  const uint64_t base = Generator::Mix(seed + 0x632BE59BD9B4E019ULL);
  const uint64_t kind = Generator::Mix(base ^ static_cast<uint64_t>(stream));
  return Generator(Generator::Mix(kind + index * 0x9E3779B97F4A7C15ULL));
}

// The days of the readings count from the day after the route file was made;
// a file header without a usable date counts from this one.
constexpr int32_t kFallbackDate = 20240304;
constexpr int32_t kDayStart = 8 * 3600;
constexpr int32_t kDayEnd = 17 * 3600;
// Readers' initials, one reader a route.
constexpr std::array<const char*, 4> kReaders = {"JD", "MK", "AR", "TS"};
// Orphan tags are of the radio range, and never one of the route's tags.
constexpr int64_t kLowestOrphanTag = 1000000;
constexpr int64_t kHighestOrphanTag = 16777215;
constexpr int32_t kMaxPdbSlots = 32767;

enum class Role { Read, High, Low, Tamper, Skipped, Unread };

struct Meter {
  int32_t route = 0;
  int32_t sequence = 0;
  int32_t tag = 0;
  int32_t prv = 0;
  int32_t max = 0;
  int32_t min = 0;
  int32_t decimals = 0;
  int32_t readType = 0;
  int32_t utility = 0;
};

// When the reader stood at a meter.
struct Visit {
  sys_days day{};
  int32_t seconds = 0;
};

struct Survey {
  int32_t records = 0;
  int32_t created = 0;  // yyyymmdd
  std::vector<Meter> meters;
  std::vector<std::string> skipCodes;
};

struct Orphan {
  int32_t tag = 0;
  int32_t reading = 0;
  Visit visit;
  int32_t tamper = 0;
  int32_t utility = 0;
  std::array<int32_t, 4> nearby{};
};

int32_t Field(clsHIF& hif, const char* name) { return NumberOf(hif.Item(name)); }

std::optional<sys_days> DayOf(int32_t yyyymmdd) {
  if (yyyymmdd <= 0) return std::nullopt;
  const year_month_day date{std::chrono::year{yyyymmdd / 10000},
                            std::chrono::month{static_cast<unsigned>(yyyymmdd / 100 % 100)},
                            std::chrono::day{static_cast<unsigned>(yyyymmdd % 100)}};
  if (!date.ok()) return std::nullopt;
  return sys_days{date};
}

int32_t DateNumber(sys_days day) {
  const year_month_day date{day};
  return static_cast<int32_t>(date.year()) * 10000 +
         static_cast<int32_t>(static_cast<unsigned>(date.month())) * 100 +
         static_cast<int32_t>(static_cast<unsigned>(date.day()));
}

int32_t TimeNumber(int32_t seconds) {
  return seconds / 3600 * 10000 + seconds / 60 % 60 * 100 + seconds % 60;
}

int32_t ToStored(int64_t value) {
  return static_cast<int32_t>(std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(),
                                                  std::numeric_limits<int32_t>::max()));
}

// A dial value as the record keeps it: with the register's decimals, the
// tenths (hundredths...) read off the dial too.
int32_t StoredReading(int64_t dial, int32_t decimals, Generator& random) {
  int64_t scale = 1;
  for (int32_t k = 0; k < std::clamp(decimals, 0, 9); ++k) scale *= 10;
  return ToStored(dial * scale + static_cast<int64_t>(random.Below(static_cast<uint64_t>(scale))));
}

int64_t InWindowDial(const Meter& m, Generator& random) {
  if (m.min < m.max) return random.Between(m.max >= 0 ? std::max(m.min, 0) : m.min, m.max);
  // A window past the dial's end: read after the roll.
  if (m.min > m.max) return random.Between(0, std::max(m.max, 0));
  // No window: the previous reading and a little use.
  return std::max(m.prv, 0) + random.Between(0, 49);
}

int64_t HighDial(const Meter& m, Generator& random) {
  const int64_t span = static_cast<int64_t>(m.max) - m.min;
  return static_cast<int64_t>(m.max) + 1 +
         static_cast<int64_t>(random.Below(static_cast<uint64_t>(std::max<int64_t>(1, span / 2))));
}

int64_t LowDial(const Meter& m, Generator& random) {
  const int64_t span = static_cast<int64_t>(m.max) - m.min;
  const int64_t room = std::min<int64_t>(m.min, std::max<int64_t>(1, span / 2));
  return static_cast<int64_t>(m.min) - 1 - static_cast<int64_t>(random.Below(static_cast<uint64_t>(room)));
}

bool Fits(Role role, const Meter& m) {
  switch (role) {
    case Role::High: return m.min < m.max;
    case Role::Low: return m.min < m.max && m.min > 0;
    default: return true;
  }
}

// Which meters are the exceptions. In this order, each as soon as the route
// has the meters for it, so that most meters of a small file are still read.
std::vector<Role> ChooseRoles(const std::vector<Meter>& meters, uint32_t seed) {
  struct Wanted {
    Role role;
    size_t fromMeters;
  };
  static constexpr std::array<Wanted, 6> kWanted = {{{Role::High, 1},
                                                     {Role::Skipped, 3},
                                                     {Role::Tamper, 4},
                                                     {Role::Unread, 5},
                                                     {Role::Low, 8},
                                                     {Role::Tamper, 12}}};
  std::vector<Role> roles(meters.size(), Role::Read);
  Generator random = StreamOf(seed, Stream::Choice, 0);
  std::vector<size_t> candidates;
  for (const Wanted& wanted : kWanted) {
    if (meters.size() < wanted.fromMeters) break;
    candidates.clear();
    for (size_t i = 0; i < meters.size(); ++i) {
      if (roles[i] == Role::Read && Fits(wanted.role, meters[i])) candidates.push_back(i);
    }
    if (candidates.empty()) continue;
    roles[candidates[random.Below(candidates.size())]] = wanted.role;
  }
  return roles;
}

// The reader walks each route on a day of its own, meter after meter in file
// order, from eight in the morning; past five the walk goes on the next day.
class Walks {
 public:
  Walks(uint32_t seed, int32_t created) : seed_(seed) {
    const auto day = DayOf(created);
    firstDay_ = day ? *day : *DayOf(kFallbackDate);
  }

  Visit Next(const Meter& meter, Generator& random) {
    Walk& walk = WalkOf(meter.route);
    walk.at.seconds += 45 + static_cast<int32_t>(random.Below(240));
    if (walk.at.seconds > kDayEnd) {
      walk.at.day += days{1};
      walk.at.seconds = kDayStart + static_cast<int32_t>(random.Below(600));
    }
    return walk.at;
  }

  const std::string& Reader(int32_t route) { return WalkOf(route).reader; }

 private:
  struct Walk {
    Visit at;
    std::string reader;
  };

  Walk& WalkOf(int32_t route) {
    auto found = walks_.find(route);
    if (found != walks_.end()) return found->second;
    Generator random = StreamOf(seed_, Stream::Route, static_cast<uint32_t>(route));
    Walk walk;
    walk.at.day = firstDay_ + days{1 + static_cast<int>((static_cast<uint32_t>(route) - 1U) % 4U)};
    walk.at.seconds = kDayStart + static_cast<int32_t>(random.Below(1800));
    walk.reader = kReaders[random.Below(kReaders.size())];
    return walks_.emplace(route, std::move(walk)).first->second;
  }

  uint32_t seed_;
  sys_days firstDay_{};
  std::map<int32_t, Walk> walks_;
};

Survey SurveyRoute(clsHIF& source) {
  Survey survey;
  bool firstRecord = true;
  while (source.ReadData()) {
    ++survey.records;
    const int32_t recType = Field(source, "RecType");
    if (firstRecord && recType == kRecFileHeader) survey.created = Field(source, "ReadingDate");
    firstRecord = false;
    if (recType == kRecMeter) {
      Meter m;
      m.route = Field(source, "RouteNbr");
      m.sequence = Field(source, "Sequence");
      m.tag = Field(source, "MeterTagNbr");
      m.prv = Field(source, "PrvReading");
      m.max = Field(source, "MaxReading");
      m.min = Field(source, "MinReading");
      m.decimals = Field(source, "Decimals");
      m.readType = Field(source, "ReadType");
      m.utility = Field(source, "UtilityCode");
      survey.meters.push_back(m);
    } else if (recType == kRecCodes && survey.skipCodes.empty()) {
      const CodeRecord codes = ReadCodeRecord(source.RawData());
      if (codes.group == 0) {
        for (const auto& entry : codes.entries) survey.skipCodes.push_back(entry[0]);
      }
    }
  }
  return survey;
}

std::vector<Orphan> HeardOrphans(const Survey& survey, const std::vector<Visit>& visits,
                                 uint32_t seed) {
  std::unordered_set<int32_t> taken;
  std::vector<size_t> tagged;  // meters with a transponder, in file order
  for (size_t i = 0; i < survey.meters.size(); ++i) {
    taken.insert(survey.meters[i].tag);
    if (survey.meters[i].tag != 0) tagged.push_back(i);
  }
  const auto firstDay = DayOf(survey.created);
  std::vector<Orphan> orphans;
  for (int32_t k = 0; k < kFilledOrphans; ++k) {
    Generator random = StreamOf(seed, Stream::Orphan, static_cast<uint64_t>(k));
    Orphan orphan;
    do {
      orphan.tag = static_cast<int32_t>(random.Between(kLowestOrphanTag, kHighestOrphanTag));
    } while (!taken.insert(orphan.tag).second);
    orphan.reading = static_cast<int32_t>(random.Below(100000));
    orphan.tamper = random.Below(4) == 0 ? 1 : 0;
    // Heard near a meter: that meter's tag and those of its neighbours.
    if (!tagged.empty()) {
      const auto at = static_cast<std::ptrdiff_t>(random.Below(tagged.size()));
      const std::array<std::ptrdiff_t, 4> around = {at, at + 1, at - 1, at + 2};
      size_t slot = 0;
      for (const std::ptrdiff_t n : around) {
        if (n < 0 || n >= static_cast<std::ptrdiff_t>(tagged.size())) continue;
        orphan.nearby[slot++] = survey.meters[tagged[static_cast<size_t>(n)]].tag;
      }
      const size_t anchor = tagged[static_cast<size_t>(at)];
      orphan.utility = survey.meters[anchor].utility;
      orphan.visit = visits[anchor];
      orphan.visit.seconds += static_cast<int32_t>(random.Below(30));
    } else {
      orphan.visit.day = (firstDay ? *firstDay : *DayOf(kFallbackDate)) + days{1};
      orphan.visit.seconds = kDayStart + static_cast<int32_t>(random.Below(3600));
    }
    orphans.push_back(orphan);
  }
  return orphans;
}

void Stamp(clsHIF& out, const Visit& visit, const std::string& reader) {
  out.SetItem("ReadingDate", Value::Long(DateNumber(visit.day)));
  out.SetItem("ReadingTime", Value::Long(TimeNumber(visit.seconds)));
  out.SetItem("Initials", Value(reader));
}

std::string Where(const Meter& m) {
  return "Route " + std::to_string(m.route) + ", sequence " + std::to_string(m.sequence) +
         ", tag " + std::to_string(m.tag) + ": ";
}

std::string Window(const Meter& m) {
  return " (limits " + std::to_string(m.min) + " to " + std::to_string(m.max) + ", decimals " +
         std::to_string(m.decimals) + ")";
}

// The reading fields of one meter, on the route's record already in `out`.
void FillMeter(IShell& shell, clsHIF& out, const Meter& m, Role role, const Visit& visit,
               const std::string& reader, const std::vector<std::string>& skipCodes,
               uint32_t seed, Generator& random) {
  if (role == Role::Unread) {
    for (const char* name : {"Status", "CurReading", "ReadingDate", "ReadingTime",
                             "ResponseCode", "TamperCount", "Signal"}) {
      out.SetItem(name, Value::Long(0));
    }
    shell.WriteLog(Where(m) + "not read");
    return;
  }
  Stamp(out, visit, reader);
  out.SetItem("TamperCount", Value::Long(0));
  out.SetItem("ResponseCode", Value::Long(0));
  if (role == Role::Skipped) {
    // A skip code of the site, when the file carries the list; its position
    // from 1 is the response code.
    int32_t code = 1;
    std::string text = "DOG";
    if (!skipCodes.empty()) {
      Generator pick = StreamOf(seed, Stream::SkipCode, 0);
      const size_t k = pick.Below(skipCodes.size());
      code = static_cast<int32_t>(k) + 1;
      text = skipCodes[k];
    }
    out.SetItem("Status", Value::Long(0));
    out.SetItem("CurReading", Value::Long(0));
    out.SetItem("ResponseCode", Value::Long(code));
    out.SetItem("ResponseText", Value(text));
    out.SetItem("Signal", Value::Long(0));
    shell.WriteLog(Where(m) + "skipped, response code " + std::to_string(code) + " " + text);
    return;
  }
  int64_t dial = 0;
  switch (role) {
    case Role::High: dial = HighDial(m, random); break;
    case Role::Low: dial = LowDial(m, random); break;
    default: dial = InWindowDial(m, random); break;
  }
  const int32_t reading = StoredReading(dial, m.decimals, random);
  out.SetItem("Status", Value::Long(1));
  out.SetItem("CurReading", Value::Long(reading));
  out.SetItem("Signal", Value::Long(m.readType == 1 ? 20 + static_cast<int32_t>(random.Below(76)) : 0));
  if (role == Role::Tamper) {
    const auto tamper = 1 + static_cast<int32_t>(random.Below(3));
    out.SetItem("TamperCount", Value::Long(tamper));
    shell.WriteLog(Where(m) + "read " + std::to_string(reading) + ", tamper count " +
                   std::to_string(tamper));
  } else if (role == Role::High) {
    shell.WriteLog(Where(m) + "read high, " + std::to_string(reading) + Window(m));
  } else if (role == Role::Low) {
    shell.WriteLog(Where(m) + "read low, " + std::to_string(reading) + Window(m));
  }
}

void WriteOrphan(clsHIF& out, const Orphan& orphan) {
  out.AddNew();
  out.SetItem("RecType", Value::Long(kRecOrphan));
  out.SetItem("MeterTagNbr", Value::Long(orphan.tag));
  out.SetItem("CurReading", Value::Long(orphan.reading));
  out.SetItem("ReadingDate", Value::Long(DateNumber(orphan.visit.day)));
  out.SetItem("ReadingTime", Value::Long(TimeNumber(orphan.visit.seconds)));
  out.SetItem("TamperCount", Value::Long(orphan.tamper));
  out.SetItem("UtilityCode", Value::Long(orphan.utility));
  // An orphan keeps the tags of the meters it was heard near in these four.
  out.SetItem("PrvReading", Value::Long(orphan.nearby[0]));
  out.SetItem("MaxReading", Value::Long(orphan.nearby[1]));
  out.SetItem("MinReading", Value::Long(orphan.nearby[2]));
  out.SetItem("LstReadingDate", Value::Long(orphan.nearby[3]));
}

void Write(clsHIF& out, int32_t record) {
  if (!out.WriteData()) {
    throw Failure(fail::kPathAccess, "Could not write record " + std::to_string(record));
  }
}

}  // namespace

void FillReadings(IShell& shell, const std::filesystem::path& route,
                  const std::filesystem::path& reading, uint32_t seed) {
  std::error_code ec;
  if (std::filesystem::exists(reading, ec) && std::filesystem::equivalent(route, reading, ec)) {
    throw Failure(fail::kBadFileName, "The reading file must not be the route file");
  }
  const int16_t version = ReadFileVersion(shell, route);
  if (version < 0) throw Failure(fail::kFileNotFound, "Could not read HIF file " + route.string());
  if (version == 0) {
    throw Failure(fail::kInvalidCall,
                  "HIF file " + route.string() + " is of version 0, which has no reading fields");
  }
  shell.WriteLog("Filling " + route.string() + " into " + reading.string() + " with seed " +
                 std::to_string(seed));

  clsHIF source(shell);
  source.SetVersion(version);
  if (source.OpenHIF(route)) throw Failure(fail::kFileNotFound, "Could not read HIF file " + route.string());
  const Survey survey = SurveyRoute(source);
  const std::vector<Role> roles = ChooseRoles(survey.meters, seed);

  Walks walks(seed, survey.created);
  std::vector<Visit> visits;
  std::vector<Generator> meterRandom;
  visits.reserve(survey.meters.size());
  meterRandom.reserve(survey.meters.size());
  for (size_t i = 0; i < survey.meters.size(); ++i) {
    meterRandom.push_back(StreamOf(seed, Stream::Meter, i));
    visits.push_back(walks.Next(survey.meters[i], meterRandom.back()));
  }
  const std::vector<Orphan> orphans = HeardOrphans(survey, visits, seed);

  // Making a file doesn't cut an old one of the same name short.
  std::filesystem::remove(reading, ec);
  clsHIF out(shell);
  out.SetVersion(version);
  const int32_t slots = std::min(survey.records + kFilledOrphans + kFilledSpareSlots, kMaxPdbSlots);
  if (out.CreateHIF(reading, source.GetType(), slots) != 0) {
    throw Failure(fail::kPathAccess, "Could not create HIF file " + reading.string());
  }

  source.Rewind();
  int32_t record = 0;
  size_t meter = 0;
  int32_t read = 0;
  while (source.ReadData()) {
    ++record;
    out.AddNew();
    out.SetRawData(source.RawData());
    if (Field(source, "RecType") == kRecMeter && meter < survey.meters.size()) {
      const Meter& m = survey.meters[meter];
      FillMeter(shell, out, m, roles[meter], visits[meter], walks.Reader(m.route),
                survey.skipCodes, seed, meterRandom[meter]);
      if (roles[meter] != Role::Unread && roles[meter] != Role::Skipped) ++read;
      ++meter;
    }
    Write(out, record);
  }
  for (const Orphan& orphan : orphans) {
    WriteOrphan(out, orphan);
    Write(out, ++record);
  }
  shell.WriteLog("Wrote " + std::to_string(record) + " records: " + std::to_string(meter) +
                 " meters, " + std::to_string(read) + " of them read, and " +
                 std::to_string(orphans.size()) + " orphans");
}

}  // namespace hifx
