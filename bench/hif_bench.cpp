// Throughput of the HIF writer and reader on a full route, and of the Perl
// Palm::PDB module writing the same records, for comparison.
//
//   write/meters:N      a schema-3 PDB HIF of a file header, a route header
//                       and N meter records, filled field by field as a
//                       route conversion fills them: by the meter fields
//                       found once in the schema, a number worked out as a
//                       number and a text as a value, and by name for the
//                       three fields a conversion never writes
//   read/meters:N       that file read back, every field of every record by
//                       name
//   perl_startup        perl loading Palm::PDB and doing nothing
//   palm_pdb_perl_write/meters:N
//                       perl writing the same records' bytes with Palm::PDB
//
// After the runs one line compares the Perl write with the engine's write.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <system_error>
#include <vector>

#include "base/Failure.h"
#include "base/Shell.h"
#include "base/Value.h"
#include "hif/clsHIF.h"

#ifndef HIFX_BENCH_SOURCE_DIR
#define HIFX_BENCH_SOURCE_DIR "."
#endif

namespace {

namespace fs = std::filesystem;
using hifx::clsHIF;
using hifx::Failure;
using hifx::MeterField;
using hifx::Value;

// The file and route headers take two records of the file besides the meters.
constexpr int32_t kHeaderRecords = 2;
// A full file: a handheld file holds at most 32767 records (its record table
// is walked with a 16-bit counter), so with the two headers, 32765 meters.
constexpr int32_t kRouteMeters = 32767 - kHeaderRecords;
constexpr int16_t kSchemaVersion = 3;
constexpr int kPerlRuns = 5;

// Log lines and progress go nowhere; a message box is counted, remembered and
// answered OK, and a benchmark that saw one is reported as failed.
class BenchShell final : public hifx::IShell {
 public:
  void WriteLog(std::string_view) override {}
  void SetProgressButton(int32_t, int32_t) override {}
  hifx::MsgAnswer MsgBox(std::string_view text, std::string_view, hifx::MsgButtons,
                         hifx::MsgIcon) override {
    if (boxes_ == 0) firstText_ = std::string(text);
    ++boxes_;
    return hifx::MsgAnswer::OK;
  }

  int Boxes() const { return boxes_; }
  std::string Complaint() const {
    return std::to_string(boxes_) + " message box(es) shown, the first: " + firstText_;
  }
  void Reset() {
    boxes_ = 0;
    firstText_.clear();
  }

 private:
  int boxes_ = 0;
  std::string firstText_;
};

fs::path& WorkDir() {
  static fs::path dir;
  return dir;
}

// Texts a route carries. The pools have sizes with no common factor, so the
// combinations of a meter's texts repeat only far apart.
const std::array<const char*, 23> kStreets = {
    "MAIN ST",      "OAK AVE",       "ELM ST",        "MAPLE DR",      "CEDAR LN",
    "PINE RD",      "WASHINGTON BLVD", "LAKE SHORE DR", "HILLCREST CT", "RIVER RD",
    "PARK PL",      "CHURCH ST",     "MILL POND RD",  "SUNSET AVE",    "HIGHLAND TER",
    "FOREST HILLS PKWY", "2ND ST",   "3RD ST",        "JEFFERSON AVE", "WILLOW WAY",
    "BIRCH HOLLOW LN", "COUNTY RD 12", "STATE HWY 9"};
const std::array<const char*, 29> kSurnames = {
    "SMITH",    "JOHNSON",  "WILLIAMS", "BROWN",     "JONES",    "GARCIA",   "MILLER",
    "DAVIS",    "RODRIGUEZ", "MARTINEZ", "HERNANDEZ", "LOPEZ",   "GONZALEZ", "WILSON",
    "ANDERSON", "THOMAS",   "TAYLOR",   "MOORE",     "JACKSON",  "MARTIN",   "LEE",
    "PEREZ",    "THOMPSON", "WHITE",    "HARRIS",    "SANCHEZ",  "CLARK",    "RAMIREZ",
    "O'BRIEN"};
const std::array<const char*, 17> kGivenNames = {
    "JAMES", "MARY", "ROBERT", "PATRICIA", "JOHN", "JENNIFER", "MICHAEL", "LINDA", "DAVID",
    "ELIZABETH", "WILLIAM", "BARBARA", "RICHARD", "SUSAN", "JOSEPH", "JESSICA", "THOMAS"};
const std::array<const char*, 11> kMessages = {
    "",
    "DOG IN YARD",
    "METER BEHIND LOCKED GATE - CALL AHEAD",
    "",
    "READ FROM ALLEY SIDE",
    "METER IN BASEMENT, KEY UNDER MAT",
    "",
    "BEWARE OF BEES NEAR METER BOX",
    "CUSTOMER REQUESTS NOTICE BEFORE ENTRY",
    "",
    "LID CRACKED - REPORT"};
const std::array<const char*, 7> kMeterMakes = {"BADGER", "SENSUS", "NEPTUNE", "ITRON",
                                                "ELSTER", "KAMSTRUP", "MUELLER"};
const std::array<const char*, 5> kServiceClasses = {"RES", "COMM", "IND", "IRR", "MULTI"};
const std::array<const char*, 13> kBooks = {"BK01", "BK02", "BK03", "BK04", "BK05",
                                            "BK06", "BK07", "BK08", "BK09", "BK10",
                                            "BK11", "BK12", "BK13"};

// The field values of the meters of a route, made before any timing so that
// the writer is timed and not the making of its input. Numbers are computed as
// they are set; every text is a ready value.
class RouteSource {
 public:
  explicit RouteSource(int32_t meters) {
    texts_.reserve(static_cast<size_t>(meters));
    for (int32_t i = 0; i < meters; ++i) {
      MeterTexts t;
      const int32_t house = 100 + (i * 37) % 9800;
      t.serviceAddress =
          Value(std::to_string(house) + " " + kStreets[static_cast<size_t>(i) % kStreets.size()]);
      t.billingName = Value(std::string(kSurnames[static_cast<size_t>(i) % kSurnames.size()]) +
                            ", " + kGivenNames[static_cast<size_t>(i / 3) % kGivenNames.size()]);
      char buf[48];
      std::snprintf(buf, sizeof buf, "SU%08d", 10000000 + i * 13);
      t.serviceUniqueId = Value(std::string(buf));
      std::snprintf(buf, sizeof buf, "%c%c%07d", 'A' + i % 26, 'A' + (i / 26) % 26,
                    (i * 7919) % 10000000);
      t.meterSerialNbr = Value(std::string(buf));
      std::snprintf(buf, sizeof buf, "ERT %08d", 30000000 + i * 3);
      t.receiverData = Value(std::string(buf));
      std::snprintf(buf, sizeof buf, "ACCT-%06d-%02d", 100000 + i, i % 100);
      t.user1 = Value(std::string(buf));
      t.user2 = Value(std::string(kMeterMakes[static_cast<size_t>(i) % kMeterMakes.size()]));
      t.user3 = Value(std::string(kServiceClasses[static_cast<size_t>(i) % kServiceClasses.size()]));
      t.user4 = Value(std::string(kBooks[static_cast<size_t>(i / 250) % kBooks.size()]));
      std::snprintf(buf, sizeof buf, "%d/%d IN", 5 + (i % 3) * 3, 8 + (i % 3) * 4);
      t.user5 = Value(std::string(buf));
      t.message = Value(std::string(kMessages[static_cast<size_t>(i) % kMessages.size()]));
      texts_.push_back(std::move(t));
    }
  }

  int32_t Meters() const { return static_cast<int32_t>(texts_.size()); }

  // The file header: it carries the schema version in MeterType.
  void FillFileHeader(clsHIF& hif) const {
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(hifx::kRecFileHeader));
    hif.SetItem("RouteNbr", Value::Long(1));
    hif.SetItem("MeterType", Value::Long(kSchemaVersion));
    hif.SetItem("PrvReading", Value::Long(Meters()));
    hif.SetItem("Initials", Value("HIF loaded from bench"));
  }

  void FillRouteHeader(clsHIF& hif) const {
    hif.AddNew();
    hif.SetItem("RecType", Value::Long(hifx::kRecRouteHeader));
    hif.SetItem("RouteNbr", Value::Long(1));
    hif.SetItem("PrvReading", Value::Long(Meters()));
    hif.SetItem("Initials", Value("ROUTE 1"));
    hif.SetItem("ResponseText", Value("ROUTE 1"));
  }

  // Meter i: every numeric field and every text a route conversion gives a
  // meter. Initials and ResponseText are the handheld's and stay empty.
  void FillMeter(clsHIF& hif, int32_t i) const {
    const MeterTexts& t = texts_[static_cast<size_t>(i)];
    const int32_t previous = (i * 7919 + 1234) % 900000;
    const int32_t day = i % 28 + 1;
    hif.AddNew();
    hif.SetNumber(MeterField::RecType, hifx::kRecMeter);
    hif.SetNumber(MeterField::RouteNbr, 1);
    hif.SetNumber(MeterField::Sequence, (i + 1) * 10);
    hif.SetNumber(MeterField::MeterTagNbr, 500000 + i * 7);
    hif.SetNumber(MeterField::MeterType, 1 + i % 4);
    hif.SetNumber(MeterField::Digits, 4 + i % 5);
    hif.SetNumber(MeterField::Decimals, i % 3);
    hif.SetItem("Reserved1", Value::Long(0));
    hif.SetNumber(MeterField::PrvReading, previous);
    hif.SetNumber(MeterField::MaxReading, previous + 2000 + i % 500);
    hif.SetNumber(MeterField::MinReading, previous + i % 10);
    hif.SetNumber(MeterField::CurReading, i % 9 == 0 ? previous + 117 : 0);
    hif.SetNumber(MeterField::ReadingDate, i % 9 == 0 ? 20240300 + day : 0);
    hif.SetNumber(MeterField::ReadingTime, i % 9 == 0 ? 80000 + (i % 36) * 100 : 0);
    hif.SetNumber(MeterField::Status, i % 4);
    hif.SetNumber(MeterField::ReadType, i % 3);
    hif.SetNumber(MeterField::ResponseCode, i % 9 == 0 ? 0 : 10 + i % 40);
    hif.SetNumber(MeterField::LstReadingDate, 20240200 + day);
    hif.SetItem("TamperCount", Value::Long(i % 7));
    hif.SetNumber(MeterField::UtilityCode, 1 + i % 3);
    hif.SetItem("Signal", Value::Long(40 + i % 60));
    // Microdegrees, north and east: a 4-byte field takes no value below
    // -16777215.
    hif.SetNumber(MeterField::Lat, 45000000 + (i * 37) % 400000);
    hif.SetNumber(MeterField::Lng, 7600000 + (i * 53) % 400000);
    hif.SetNumber(MeterField::ScaleFactor, i % 5 == 0 ? 10 : 1);
    hif.SetNumber(MeterField::InitReading, previous - previous % 1000);
    hif.SetNumber(MeterField::InitPulseCount, (i * 131) % 65536);
    hif.SetNumber(MeterField::InitTamperCount, i % 3);
    hif.SetItem(MeterField::Message, t.message);
    hif.SetItem(MeterField::ServiceAddress, t.serviceAddress);
    hif.SetItem(MeterField::BillingName, t.billingName);
    hif.SetItem(MeterField::ServiceUniqueID, t.serviceUniqueId);
    hif.SetItem(MeterField::MeterSerialNbr, t.meterSerialNbr);
    hif.SetItem(MeterField::ReceiverData, t.receiverData);
    hif.SetItem(MeterField::User1, t.user1);
    hif.SetItem(MeterField::User2, t.user2);
    hif.SetItem(MeterField::User3, t.user3);
    hif.SetItem(MeterField::User4, t.user4);
    hif.SetItem(MeterField::User5, t.user5);
  }

 private:
  struct MeterTexts {
    Value message, serviceAddress, billingName, serviceUniqueId, meterSerialNbr, receiverData;
    Value user1, user2, user3, user4, user5;
  };
  std::vector<MeterTexts> texts_;
};

const RouteSource& Route(int32_t meters) {
  static std::map<int32_t, RouteSource> routes;
  auto it = routes.find(meters);
  if (it == routes.end()) it = routes.emplace(meters, RouteSource(meters)).first;
  return it->second;
}

// Writes the route's HIF as a conversion does: the table sized for the meters
// plus ten, and the file finished when the clsHIF goes.
void WriteRouteHif(const fs::path& path, const RouteSource& route, BenchShell& shell) {
  clsHIF hif(shell);
  hif.SetVersion(kSchemaVersion);
  const int16_t status = hif.CreateHIF(path, hifx::kFilePDB, route.Meters() + 10);
  if (status != 0) throw Failure(status, "CreateHIF returned " + std::to_string(status));
  route.FillFileHeader(hif);
  hif.WriteData();
  route.FillRouteHeader(hif);
  hif.WriteData();
  for (int32_t i = 0; i < route.Meters(); ++i) {
    route.FillMeter(hif, i);
    hif.WriteData();
  }
}

void RemoveFile(const fs::path& path) {
  std::error_code ec;
  fs::remove(path, ec);
}

std::string MetersTag(int32_t meters) { return "meters" + std::to_string(meters); }

void BM_Write(benchmark::State& state) {
  const auto meters = static_cast<int32_t>(state.range(0));
  const RouteSource& route = Route(meters);
  const fs::path path = WorkDir() / ("write_" + MetersTag(meters) + ".hif");
  BenchShell shell;
  uint64_t fileSize = 0;
  for (auto _ : state) {
    state.PauseTiming();
    RemoveFile(path);  // the writer's open does not truncate
    shell.Reset();
    state.ResumeTiming();
    try {
      WriteRouteHif(path, route, shell);
    } catch (const Failure& failure) {
      state.SkipWithError(("write failed: " + failure.Description()).c_str());
      break;
    }
    if (shell.Boxes() > 0) {
      state.SkipWithError(shell.Complaint().c_str());
      break;
    }
  }
  if (!state.error_occurred()) {
    std::error_code ec;
    fileSize = fs::file_size(path, ec);
    state.SetBytesProcessed(static_cast<int64_t>(fileSize) * state.iterations());
    state.counters["records"] = meters + kHeaderRecords;
    state.counters["file_kb"] = static_cast<double>(fileSize) / 1024.0;
  }
}

void BM_Read(benchmark::State& state) {
  const auto meters = static_cast<int32_t>(state.range(0));
  const fs::path path = WorkDir() / ("read_" + MetersTag(meters) + ".hif");
  BenchShell shell;
  if (!fs::exists(path)) {
    try {
      WriteRouteHif(path, Route(meters), shell);
    } catch (const Failure& failure) {
      state.SkipWithError(("writing the file to read failed: " + failure.Description()).c_str());
      return;
    }
  }
  // Every field of the schema, by name, as a reader walks them.
  std::vector<std::string> names;
  {
    clsHIF schema(shell);
    schema.SetVersion(kSchemaVersion);
    for (int16_t i = 1; i <= schema.DB().FieldCount(); ++i) names.push_back(schema.DB().FieldName(i));
  }
  shell.Reset();
  int64_t records = 0;
  for (auto _ : state) {
    clsHIF hif(shell);
    if (hif.OpenHIF(path)) {
      state.SkipWithError(("OpenHIF reported failure on a file of " +
                           std::to_string(meters + kHeaderRecords) + " records")
                              .c_str());
      break;
    }
    hif.SetVersion(kSchemaVersion);
    double sum = 0;
    int32_t metersRead = 0;
    records = 0;
    try {
      while (hif.ReadData()) {
        ++records;
        for (const std::string& name : names) {
          const Value v = hif.Item(name);
          sum += v.IsText() ? static_cast<double>(v.Text().size()) : v.ToDouble();
        }
        if (hif.Item("RecType").ToInt32() == hifx::kRecMeter) ++metersRead;
      }
    } catch (const Failure& failure) {
      state.SkipWithError(("read failed: " + failure.Description()).c_str());
      break;
    }
    benchmark::DoNotOptimize(sum);
    if (metersRead != meters) {
      state.SkipWithError(("read " + std::to_string(metersRead) + " meter records, wrote " +
                           std::to_string(meters))
                              .c_str());
      break;
    }
    if (shell.Boxes() > 0) {
      state.SkipWithError(shell.Complaint().c_str());
      break;
    }
  }
  if (!state.error_occurred()) {
    state.counters["records"] = static_cast<double>(records);
    state.counters["fields"] = static_cast<double>(names.size());
  }
}

// The records' bytes as the engine makes them, each behind its length in four
// big-endian bytes: the Perl writer's input.
void WriteRawRecords(const fs::path& path, const RouteSource& route, BenchShell& shell) {
  clsHIF hif(shell);
  hif.SetVersion(kSchemaVersion);
  std::string out;
  auto put = [&out](const std::string& bytes) {
    const auto n = static_cast<uint32_t>(bytes.size());
    const char length[4] = {static_cast<char>(n >> 24), static_cast<char>(n >> 16),
                            static_cast<char>(n >> 8), static_cast<char>(n)};
    out.append(length, 4);
    out.append(bytes);
  };
  route.FillFileHeader(hif);
  put(hif.RawData());
  route.FillRouteHeader(hif);
  put(hif.RawData());
  for (int32_t i = 0; i < route.Meters(); ++i) {
    route.FillMeter(hif, i);
    put(hif.RawData());
  }
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(out.data(), static_cast<std::streamsize>(out.size()));
  if (!file) throw Failure(hifx::fail::kPathAccess, "could not write " + path.string());
}

// The size a Palm database of these records has: 78 bytes of header and
// count, 8 bytes of index entry a record, the two bytes of gap behind the
// index, and the records' bytes.
uint64_t ExpectedPdbSize(const fs::path& rawPath) {
  std::ifstream in(rawPath, std::ios::binary);
  uint64_t records = 0;
  uint64_t data = 0;
  unsigned char length[4];
  while (in.read(reinterpret_cast<char*>(length), 4)) {
    const uint64_t n = (uint64_t{length[0]} << 24) | (uint64_t{length[1]} << 16) |
                       (uint64_t{length[2]} << 8) | length[3];
    in.seekg(static_cast<std::streamoff>(n), std::ios::cur);
    ++records;
    data += n;
  }
  return 78 + 8 * records + 2 + data;
}

// A path as one word of a shell command (the paths here hold no quote).
std::string Quoted(const fs::path& path) {
  std::string word(1, '\'');
  word += path.string();
  word += '\'';
  return word;
}

// Times a command run through the system's shell, from the start of the
// process to its end.
void RunCommand(benchmark::State& state, const std::string& command) {
  const int rc = std::system(command.c_str());
  if (rc != 0) state.SkipWithError(("command failed (" + std::to_string(rc) + "): " + command).c_str());
}

void BM_PerlStartup(benchmark::State& state) {
  const std::string command = "perl -MPalm::PDB -MPalm::Raw -e 1";
  for (auto _ : state) {
    RunCommand(state, command);
    if (state.error_occurred()) break;
  }
  state.SetLabel("perl start-up and loading Palm::PDB only");
}

void BM_PerlWrite(benchmark::State& state) {
  const auto meters = static_cast<int32_t>(state.range(0));
  const fs::path raw = WorkDir() / ("raw_" + MetersTag(meters) + ".bin");
  const fs::path out = WorkDir() / ("perl_" + MetersTag(meters) + ".pdb");
  const fs::path script = fs::path(HIFX_BENCH_SOURCE_DIR) / "palm_pdb_write.pl";
  BenchShell shell;
  try {
    WriteRawRecords(raw, Route(meters), shell);
  } catch (const Failure& failure) {
    state.SkipWithError(failure.Description().c_str());
    return;
  }
  if (shell.Boxes() > 0) {
    state.SkipWithError(shell.Complaint().c_str());
    return;
  }
  const uint64_t expected = ExpectedPdbSize(raw);
  const std::string command = "perl " + Quoted(script) + " " + Quoted(raw) + " " + Quoted(out);
  for (auto _ : state) {
    state.PauseTiming();
    RemoveFile(out);
    state.ResumeTiming();
    RunCommand(state, command);
    if (state.error_occurred()) break;
    state.PauseTiming();
    std::error_code ec;
    const uint64_t size = fs::file_size(out, ec);
    state.ResumeTiming();
    if (ec || size != expected) {
      state.SkipWithError(("Palm::PDB wrote " + std::to_string(size) + " bytes, expected " +
                           std::to_string(expected))
                              .c_str());
      break;
    }
  }
  state.SetLabel("whole perl process, start-up included");
}

// Shows the runs as the console reporter does and keeps each benchmark's mean
// wall time an iteration, in milliseconds, for the comparison line.
class RecordingReporter final : public benchmark::ConsoleReporter {
 public:
  // Colours only on a terminal: the output is often kept in a file.
  RecordingReporter()
      : ConsoleReporter(::isatty(STDOUT_FILENO) != 0 ? OO_ColorTabular : OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred) continue;
      // With --benchmark_report_aggregates_only only the aggregates come: the
      // mean of the repetitions then stands for them.
      const bool mean = run.run_type == Run::RT_Aggregate && run.aggregate_name == "mean";
      if (run.run_type != Run::RT_Iteration && !mean) continue;
      const double ms = run.GetAdjustedRealTime() *
                        benchmark::GetTimeUnitMultiplier(benchmark::kMillisecond) /
                        benchmark::GetTimeUnitMultiplier(run.time_unit);
      Sample& s = (mean ? means_ : samples_)[run.run_name.str()];
      s.total += ms;
      ++s.count;
    }
  }

  // The mean over repetitions of the benchmark named so (the name up to the
  // iteration and time options), or a negative number when it did not run.
  double MeanMs(const std::string& name) const {
    const double fromRuns = MeanOf(samples_, name);
    return fromRuns >= 0 ? fromRuns : MeanOf(means_, name);
  }

 private:
  struct Sample {
    double total = 0;
    int count = 0;
  };
  static double MeanOf(const std::map<std::string, Sample>& samples, const std::string& name) {
    double total = 0;
    int count = 0;
    for (const auto& [full, sample] : samples) {
      if (full == name || full.rfind(name + "/", 0) == 0) {
        total += sample.total;
        count += sample.count;
      }
    }
    return count == 0 ? -1.0 : total / count;
  }

  std::map<std::string, Sample> samples_;  // by run name, one an iteration run
  std::map<std::string, Sample> means_;    // the same, from the mean aggregates
};

std::string Ms(double ms) {
  if (ms < 0) return "n/a";
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.1f", ms);
  return buf;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

  WorkDir() = fs::temp_directory_path() / ("hif_bench." + std::to_string(::getpid()));
  fs::create_directories(WorkDir());

  benchmark::RegisterBenchmark("write", BM_Write)
      ->ArgName("meters")
      ->Arg(kRouteMeters)
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
  benchmark::RegisterBenchmark("read", BM_Read)
      ->ArgName("meters")
      ->Arg(kRouteMeters)
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
  benchmark::RegisterBenchmark("perl_startup", BM_PerlStartup)
      ->Iterations(kPerlRuns)
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
  benchmark::RegisterBenchmark("palm_pdb_perl_write", BM_PerlWrite)
      ->ArgName("meters")
      ->Arg(kRouteMeters)
      ->Iterations(kPerlRuns)
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();

  RecordingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();

  const std::string full = "/meters:" + std::to_string(kRouteMeters);
  const double hifxWrite = reporter.MeanMs("write" + full);
  const double hifxRead = reporter.MeanMs("read" + full);
  const double perlWrite = reporter.MeanMs("palm_pdb_perl_write" + full);
  const double perlStartup = reporter.MeanMs("perl_startup");

  std::printf("hifx_write_ms=%s (target 150) hifx_read_ms=%s (target 50)\n", Ms(hifxWrite).c_str(),
              Ms(hifxRead).c_str());
  std::printf("note: the Perl time is the whole perl process, start-up and module loading "
              "included (perl_startup_ms=%s)\n",
              Ms(perlStartup).c_str());
  if (perlWrite > 0 && hifxWrite > 0) {
    std::printf("palm_pdb_perl_write_ms=%s hifx_write_ms=%s ratio=%.2f\n", Ms(perlWrite).c_str(),
                Ms(hifxWrite).c_str(), perlWrite / hifxWrite);
  } else {
    std::printf("palm_pdb_perl_write_ms=%s hifx_write_ms=%s ratio=n/a\n", Ms(perlWrite).c_str(),
                Ms(hifxWrite).c_str());
  }

  std::error_code ec;
  fs::remove_all(WorkDir(), ec);
  return 0;
}
