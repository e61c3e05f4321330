#include <gtest/gtest.h>

#include <functional>

#include "support/ExampleSite.h"
#include "support/HifImage.h"
#include "support/RunHifx.h"
#include "support/SampleHif.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

size_t Lines(const std::string& text) {
  return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST(DumpCommand, OneJsonObjectPerRecordFromEitherContainer) {
  TempDir dir;
  TestShell shell;
  WriteSampleHif(shell, dir / "route.pdb", kFilePDB);
  const auto r = RunHifx({"dump", (dir / "route.pdb").string()}, dir);
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
  EXPECT_EQ(Lines(r.out), 7u);
  EXPECT_EQ(
      FirstLine(r.out),
      R"({"RecType":0,"RouteNbr":2,"Sequence":20240229,"MeterTagNbr":1305,"MeterType":3,)"
      R"("Digits":0,"Decimals":0,"Reserved1":0,"PrvReading":3,"MaxReading":0,"MinReading":0,)"
      R"("CurReading":0,"ReadingDate":20240229,"ReadingTime":0,"Status":0,"ReadType":0,)"
      R"("ResponseCode":0,"LstReadingDate":0,"TamperCount":0,"UtilityCode":0,"Signal":0,"Lat":0,)"
      R"("Lng":0,"ScaleFactor":0,"InitReading":0,"InitPulseCount":0,"InitTamperCount":0,)"
      R"("Initials":"HIF loaded from route.txt","ResponseText":"","Message":"",)"
      R"("ServiceAddress":"","BillingName":"","ServiceUniqueID":"","MeterSerialNbr":"",)"
      R"("ReceiverData":"","User1":"","User2":"","User3":"","User4":"","User5":""})");
  // Quotes, and bytes above 127 as the Latin-1 characters of their codes.
  EXPECT_NE(r.out.find(R"("BillingName":"SMITH & CO \u00c9")"), std::string::npos);
  EXPECT_NE(r.out.find(R"("BillingName":"DOE \"JJ\"")"), std::string::npos);
  EXPECT_NE(r.out.find("\n" R"({"RecType":5,"group":0,"flag":0,"entries":[["DOG","Dog in yard",""]]})" "\n"),
            std::string::npos);
  WriteSampleHif(shell, dir / "route.vfs", kFileVFS);
  const auto vfs = RunHifx({"dump", (dir / "route.vfs").string()}, dir);
  ASSERT_EQ(vfs.status, 0) << vfs.err;
  EXPECT_EQ(vfs.out, r.out);
}

TEST(ViewCommand, RoutesAndTheMetersOfOneRoute) {
  TempDir dir;
  TestShell shell;
  WriteSampleHif(shell, dir / "route.pdb", kFilePDB);
  const auto routes = RunHifx({"view", (dir / "route.pdb").string()}, dir);
  ASSERT_EQ(routes.status, 0) << routes.err;
  EXPECT_EQ(routes.out,
            "Index\tRoute\tMeters\tFirst Read\tLast Read\n"
            "1\tNORTH\t2\t0\t0\n"
            "2\tSOUTH\t1\t0\t0\n");
  const auto meters = RunHifx({"view", (dir / "route.pdb").string(), "--route", "1"}, dir);
  ASSERT_EQ(meters.status, 0) << meters.err;
  ASSERT_EQ(Lines(meters.out), 3u);
  EXPECT_EQ(FirstLine(meters.out).substr(0, 30), "Sequence\tMeterTagNbr\tMeterType");
  EXPECT_EQ(meters.out.substr(meters.out.find('\n') + 1, 30), "10\t50012345\t87\t5\t0\t1234\t1734\t1");
  const auto none = RunHifx({"view", (dir / "route.pdb").string(), "--route", "9"}, dir);
  EXPECT_EQ(Lines(none.out), 1u);  // the columns, no meters
}

// A file's texts never reach the terminal as escape sequences, nor break a
// row: a tab-separated cell escapes them, a CSV field quotes what needs it.
TEST(ViewCommand, OddTextsAsEscapedCellsAndAsQuotedFields) {
  TempDir dir;
  TestShell shell;
  {
    HifWriter w(shell, dir / "odd.pdb");
    w.Add({{"RecType", 0}, {"RouteNbr", 1}, {"MeterType", 3}});
    w.Add({{"RecType", 1}, {"RouteNbr", 1}, {"Initials", "N\x1b[2J\tX\x9b\xc9"}});
    w.Add({{"RecType", 1}, {"RouteNbr", 2}, {"Initials", "a\\t\nb\r\x7f,\"q\""}});
  }
  const auto odd = (dir / "odd.pdb").string();
  const auto tsv = RunHifx({"view", odd}, dir);
  ASSERT_EQ(tsv.status, 0) << tsv.err;
  EXPECT_EQ(tsv.out,
            "Index\tRoute\tMeters\tFirst Read\tLast Read\n"
            "1\tN\\x1B[2J\\tX\\x9B\xc9\t0\t0\t0\n"
            "2\ta\\\\t\\nb\\r\\x7F,\"q\"\t0\t0\t0\n");
  const auto csv = RunHifx({"view", odd, "--csv"}, dir);
  ASSERT_EQ(csv.status, 0) << csv.err;
  EXPECT_EQ(csv.out,
            "Index,Route,Meters,First Read,Last Read\r\n"
            "1,N\x1b[2J\tX\x9b\xc9,0,0,0\r\n"
            "2,\"a\\t\nb\r\x7f,\"\"q\"\"\",0,0,0\r\n");
  const auto meters = RunHifx({"view", odd, "--route", "2", "--csv"}, dir);
  EXPECT_EQ(FirstLine(meters.out).substr(0, 31), "Sequence,MeterTagNbr,MeterType,");
  EXPECT_EQ(Lines(meters.out), 1u);  // the columns: the route has no meters
}

TEST(ViewCommand, AFileThatCannotBeReadIsSaidSo) {
  TempDir dir;
  const auto r = RunHifx({"view", (dir / "missing.pdb").string()}, dir);
  EXPECT_EQ(r.status, 66);
  EXPECT_EQ(r.out, "Error: Could not read HIF file\n");
  // The system's words, then which file and what is wrong with it.
  EXPECT_EQ(r.err, "Unable to display file\nhifx: view: " + (dir / "missing.pdb").string() + ": no such file\n");
}

// Damaged files: what is wrong, said with the file's name, and exit 65 (66
// when there is no file) before
// anything is shown; never a crash, a hang or a partial listing.
struct DamagedCase {
  const char* name;
  std::function<std::string(std::string)> damage;  // the sample file's bytes, damaged; none: no file
  const char* says;                                // what the message says is wrong
};
void PrintTo(const DamagedCase& c, std::ostream* os) { *os << c.name; }

std::string WithCount(std::string bytes, uint8_t high, uint8_t low) {
  bytes[76] = static_cast<char>(high);
  bytes[77] = static_cast<char>(low);
  return bytes;
}

class DamagedFileTest : public testing::TestWithParam<DamagedCase> {};

TEST_P(DamagedFileTest, DumpViewAndStatsSayWhatIsWrong) {
  TempDir dir;
  TestShell shell;
  WriteSampleHif(shell, dir / "good.pdb", kFilePDB);
  const auto path = dir / GetParam().name;
  if (GetParam().damage) WriteBytes(path, GetParam().damage(ReadBytes(dir / "good.pdb")));
  for (const char* command : {"dump", "view", "stats"}) {
    const auto r = RunHifx({command, path.string()}, dir);
    ASSERT_TRUE(r.exited) << command << " died";
    EXPECT_EQ(r.status, GetParam().damage ? 65 : 66) << command;
    if (std::string(command) != "view") {
      EXPECT_EQ(r.out, "");
      EXPECT_EQ(r.err.rfind("hifx: " + std::string(command) + ": ", 0), 0u) << r.err;
      EXPECT_NE(r.err.find(path.string()), std::string::npos) << r.err;
    }
    EXPECT_NE((r.out + r.err).find(GetParam().says), std::string::npos) << command << ": " << r.out << r.err;
  }
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Files, DamagedFileTest, testing::Values(
    DamagedCase{"Missing", nullptr, "ould not read HIF file"},
    DamagedCase{"Empty", [](std::string) { return std::string(); }, "0 bytes long, too short for the 78-byte header"},
    DamagedCase{"HeaderOnly", [](std::string b) { return b.substr(0, 50); }, "too short for the 78-byte header"},
    DamagedCase{"Truncated", [](std::string b) { return b.substr(0, b.size() - 150); },
                ", past the end of the file ("},
    // Record 2 starts far past the end.
    DamagedCase{"PastEnd", [](std::string b) { return b.replace(78 + 8 * 2 + 2, 1, "\x7F"); },
                "record 2 starts at offset 32627, past the end of the file (868 bytes)"},
    // Record 3 starts before record 2.
    DamagedCase{"OutOfOrder", [](std::string b) { return b.replace(78 + 8 * 3, 4, Hex("00000060")); },
                "record 3 starts at offset 96, inside the header or the record list"},
    DamagedCase{"Count32768", [](std::string b) { return WithCount(b, 0x80, 0); }, "32768 records, more than"},
    DamagedCase{"Count32767", [](std::string b) { return WithCount(b, 0x7F, 0xFF); },
                "32767 records, and their list runs past the end of the file"},
    DamagedCase{"CountPastList", [](std::string b) { return WithCount(b, 0, 8); },
                "record 7 starts at offset 0, inside the header or the record list"},
    DamagedCase{"Unnamed", [](std::string b) { return b.replace(0, 32, std::string(32, 'N')); },
                "the database name has no terminating NUL"},
    DamagedCase{"VfsBadLength", [](std::string) { return Hex("00000005 0001") + "xxx" + Hex("7FFFFFFF"); },
                "record 1 at offset 9 claims 2147483647 bytes, past the end of the file"}),
    [](const auto& info) { return std::string(info.param.name); });
// clang-format on

class StatsCommand : public ExampleSite {};

// The example's five meters: three read (one high, one tampered with), one
// unread, one skipped as "LCK"; the alerts are the example site's.
TEST_F(StatsCommand, TheExampleAsATableAndAsJson) {
  const auto table = Hifx({"stats", kExamples + "reading.pdb"});
  EXPECT_EQ(table.status, 0) << table.err;
  EXPECT_EQ(table.out,
            "Route  Name  Meters  Read  Unread  Skipped  Radio  Manual  Probe  Low  High  Rollover  Tamper  "
            "First reading        Last reading         Span\n"
            "1      0001       3     3       0        0      2       1      0    0     1         0       1  "
            "2023-11-15 08:31:53  2023-11-15 08:36:20  0:04:27\n"
            "2      0002       2     0       1        1      0       0      0    0     0         0       0  "
            "-                    -                    -\n"
            "Total             5     3       1        1      2       1      0    0     1         0       1  "
            "2023-11-15 08:31:53  2023-11-15 08:36:20  0:04:27\n"
            "\n"
            "Skipped by code:\n"
            "  2 LCK Locked gate: 1\n"
            "\n"
            "Orphans: 3\n"
            "Alerts: out of range Popup Message!, rollover Beep, tamper Popup Message!\n");

  const auto json = Hifx({"stats", "--json", kExamples + "reading.pdb"});
  EXPECT_EQ(json.status, 0) << json.err;
  const std::string skip = R"("skippedByCode":[{"responseCode":2,"code":"LCK","reason":"Locked gate","meters":1}])";
  EXPECT_EQ(json.out,
            R"({"file":")" + kExamples + R"(reading.pdb","routes":[)"
            R"({"route":1,"name":"0001","meters":3,"read":3,"unread":0,"skipped":0,"radio":2,"manual":1,"probe":0,)"
            R"("low":0,"high":1,"rollover":0,"tamper":1,"skippedByCode":[],"firstReading":"2023-11-15T08:31:53",)"
            R"("lastReading":"2023-11-15T08:36:20","spanSeconds":267},)"
            R"({"route":2,"name":"0002","meters":2,"read":0,"unread":1,"skipped":1,"radio":0,"manual":0,"probe":0,)"
            R"("low":0,"high":0,"rollover":0,"tamper":0,)" + skip +
            R"(,"firstReading":null,"lastReading":null,"spanSeconds":0}],)"
            R"("total":{"meters":5,"read":3,"unread":1,"skipped":1,"radio":2,"manual":1,"probe":0,)"
            R"("low":0,"high":1,"rollover":0,"tamper":1,)" + skip +
            R"(,"firstReading":"2023-11-15T08:31:53","lastReading":"2023-11-15T08:36:20","spanSeconds":267},)"
            R"("orphans":3,"alerts":{"outOfRange":"Popup Message!","rollover":"Beep","tamper":"Popup Message!"}})"
            "\n");
}

// A hand-made pair: the later file moves one meter, changes another out,
// drops one and adds one.
TEST(DiffCommand, AHandMadePairAsATableAndAsJson) {
  TempDir dir;
  TestShell shell;
  const auto write = [&](const std::string& name, std::vector<std::tuple<const char*, const char*, int, int, int>> meters) {
    HifWriter w(shell, dir / name, 3, kFilePDB, static_cast<int32_t>(meters.size()) + 1);
    w.Add({{"RecType", kRecFileHeader}, {"RouteNbr", 2}, {"MeterType", 3}});
    for (const auto& [account, serial, route, sequence, tag] : meters) {
      w.Add({{"RecType", kRecMeter}, {"RouteNbr", route}, {"Sequence", sequence}, {"MeterTagNbr", tag},
             {"MeterType", 1}, {"Digits", 6}, {"ServiceUniqueID", account}, {"MeterSerialNbr", serial}});
    }
  };
  write("old.pdb", {{"AC1", "SN1", 1, 10, 101}, {"AC2", "SN2", 1, 20, 102}, {"AC3", "SN3", 1, 30, 103},
                    {"AC4", "SN4", 2, 10, 104}});
  write("new.pdb", {{"AC1", "SN1", 1, 10, 101}, {"AC2", "SN2", 2, 5, 102}, {"AC3", "SN9", 1, 30, 109},
                    {"AC5", "SN5", 2, 20, 105}});
  const auto old = (dir / "old.pdb").string(), now = (dir / "new.pdb").string();

  const auto table = RunHifx({"diff", old, now}, dir);
  EXPECT_EQ(table.status, 1) << table.err;
  EXPECT_EQ(table.out,
            "Change   Account  Meter       Route   Sequence  Detail\n"
            "added    AC5      SN5         2       20        tag 105, type 1, digits 6\n"
            "removed  AC4      SN4         2       10        tag 104, type 1, digits 6\n"
            "moved    AC2      SN2         1 -> 2  20 -> 5\n"
            "meter    AC3      SN3 -> SN9  1       30        tag 103 -> 109\n"
            "\n"
            "1 added, 1 removed, 1 moved to another route, 0 resequenced, 1 changed out; 1 unchanged\n");

  const auto json = RunHifx({"diff", "--json", old, old}, dir);
  EXPECT_EQ(json.status, 0) << json.err;
  EXPECT_EQ(json.out, R"({"old":)" + JsonQuoted(old) + R"(,"new":)" + JsonQuoted(old) + R"(,"differences":[],)"
                      R"("counts":{"added":0,"removed":0,"moved":0,"sequence":0,"meter":0,"unchanged":4}})" "\n");
  const auto one = RunHifx({"diff", "--json", now, old}, dir);
  EXPECT_NE(one.out.find(R"({"change":"moved","account":"AC2",)"
                         R"("old":{"serial":"SN2","tag":102,"type":1,"digits":6,"route":2,"sequence":5},)"
                         R"("new":{"serial":"SN2","tag":102,"type":1,"digits":6,"route":1,"sequence":20}})"),
            std::string::npos) << one.out;
  EXPECT_EQ(RunHifx({"diff", old, (dir / "missing.pdb").string()}, dir).status, 66);
}

TEST(PlotCommand, PicturesOfTheExampleAndTheFilesItWillNotWrite) {
  TempDir dir;
  const auto svg = (dir / "meters.svg").string(), png = (dir / "meters.png").string();
#ifdef HIFX_HAVE_QT
  const auto r = RunHifx({"plot", kExamples + "reading.pdb", "--svg", svg, "--png", png}, dir);
#else
  const auto r = RunHifx({"plot", kExamples + "reading.pdb", "--svg", svg}, dir);
  EXPECT_EQ(RunHifx({"plot", kExamples + "reading.pdb", "--png", png}, dir).status, 64);
#endif
  EXPECT_EQ(r.status, 0) << r.err;
  // The example's meters carry no position: all are said, and listed under
  // the picture.
  EXPECT_EQ(r.out.substr(0, r.out.find('\n')), "5 meters, 0 placed, 5 without a position");
  EXPECT_NE(r.out.find("no position: route 2, sequence 20, meter SN5502, account 200-002\n"), std::string::npos);
  EXPECT_NE(ReadBytes(svg).find(">route 2, sequence 20, meter SN5502, account 200-002</text>"), std::string::npos);
#ifdef HIFX_HAVE_QT
  EXPECT_EQ(ReadBytes(png).substr(0, 8), "\x89PNG\r\n\x1a\n");
#endif

  // Nothing without a picture to make; never over the file read.
  EXPECT_EQ(RunHifx({"plot", kExamples + "reading.pdb"}, dir).status, 64);
  WriteBytes(dir / "copy.pdb", ReadBytes(kExamples + "reading.pdb"));
  const auto same = RunHifx({"plot", (dir / "copy.pdb").string(), "--svg", (dir / "copy.pdb").string()}, dir);
  EXPECT_EQ(same.status, 64);
  EXPECT_EQ(ReadBytes(dir / "copy.pdb"), ReadBytes(kExamples + "reading.pdb"));
}

#if defined(HIFX_HAVE_QT) && !defined(_WIN32)
// The program loads its Qt part only to draw; without it, every other
// command still runs, and a drawing command names the part and writes
// nothing.
TEST(PlotCommand, AProgramWithoutItsQtPartDrawsNothingAndSaysWhy) {
  TempDir dir;
  const std::filesystem::path alone = dir / "bin" / "hifx";
  std::filesystem::create_directories(alone.parent_path());
  std::filesystem::copy_file(HIFX_BINARY, alone);
  const std::string pdf = (dir / "r.pdf").string(), png = (dir / "m.png").string(), svg = (dir / "m.svg").string();

  EXPECT_EQ(RunProgram(alone.string(), {"dump", kExamples + "reading.pdb"}, dir).status, 0);
  const auto report =
      RunProgram(alone.string(), {"report", "--type", "reading", "--pdf", pdf, kExamples + "reading.pdb"}, dir);
  const auto plot = RunProgram(alone.string(), {"plot", kExamples + "reading.pdb", "--svg", svg, "--png", png}, dir);
  const std::string missing = (dir / "lib" / "hifx" / "hifx-qt.so").string() + ": cannot open shared object file";
  for (const RunResult* r : {&report, &plot}) {
    EXPECT_EQ(r->status, 1);
    EXPECT_NE(r->err.find("need the Qt part of hifx, " + missing), std::string::npos) << r->err;
  }
  EXPECT_NE(report.err.find("hifx: report: PDF and printed reports need"), std::string::npos) << report.err;
  EXPECT_NE(plot.err.find("hifx: plot: PNG pictures need"), std::string::npos) << plot.err;
  for (const std::string& out : {pdf, png, svg}) EXPECT_FALSE(std::filesystem::exists(out)) << out;
}
#endif

}  // namespace
}  // namespace hifx::test
