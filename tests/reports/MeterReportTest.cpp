// The four meter reports on a reading file with one row of every kind, laid
// out on the recording printer (a character is FontSize pixels wide, 100
// pixels an inch), and once through the command line to a PDF whose text
// poppler reads back.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "reports/clsReport.h"
#include "reports/RecordingDevice.h"
#include "support/HifImage.h"
#include "support/RunHifx.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx {
namespace {

using test::TempDir;
using test::TestShell;

struct Row {
  int32_t tag;
  std::map<std::string, Value> fields;
  int32_t recType = kRecMeter;
};

Value L(int32_t v) { return Value::Long(v); }

// One row of each kind the reports tell apart; the tag says which.
std::vector<Row> Rows() {
  const std::map<std::string, Value> read = {{"Status", L(1)},         {"ReadType", L(1)},
                                             {"ReadingDate", L(20240309)}, {"ReadingTime", L(130509)},
                                             {"PrvReading", L(90)},    {"MinReading", L(100)},
                                             {"MaxReading", L(200)},   {"CurReading", L(150)},
                                             {"Digits", L(0)}};
  auto with = [&](std::map<std::string, Value> changes) {
    std::map<std::string, Value> fields = read;
    for (auto& [k, v] : changes) fields[k] = v;
    return fields;
  };
  return {
      {101, with({{"ServiceUniqueID", Value("A  B     C")}, {"MeterType", L(1)}, {"MeterSerialNbr", Value("SN1")},
                  {"BillingName", Value("DOE J")}, {"ServiceAddress", Value("1 OAK")}})},
      {102, with({{"Status", L(0)}, {"ResponseText", Value("NO ACCESS")}})},  // missed
      {103, with({{"ReadType", L(4)}, {"ResponseText", Value("DOG")}})},      // skipped
      {104, with({{"CurReading", L(50)}})},                                  // low
      {105, with({{"CurReading", L(250)}})},                                 // high
      // A range that wraps past the dials' end: read between its ends.
      {106, with({{"MinReading", L(900)}, {"MaxReading", L(100)}, {"CurReading", L(500)}})},
      {107, with({{"MinReading", L(0)}, {"MaxReading", L(0)}, {"PrvReading", L(500)}, {"CurReading", L(400)}})},
      {108, with({{"ReadType", L(2)}, {"ResponseCode", L(3)}, {"ResponseText", Value("LCK")}})},  // manual
      {109, with({{"TamperCount", L(2)}})},
      {110, with({{"ResponseText", Value("Gate; dog")}})},  // a note
      // 12345 with two decimals is 123, below the previous 124.
      {111, with({{"Decimals", L(2)}, {"Digits", L(5)}, {"CurReading", L(12345)}, {"PrvReading", L(124)}})},
      {112, {{"PrvReading", L(11)}, {"MinReading", L(12)}, {"Status", L(1)}, {"ReadingDate", L(20240309)}},
       kRecOrphan},
  };
}

void WriteReadingFile(const std::filesystem::path& path, const std::vector<Row>& rows) {
  TestShell quiet;
  test::HifWriter w(quiet, path, 3, kFilePDB, static_cast<int32_t>(rows.size()) + 4);
  w.Add({{"RecType", kRecFileHeader}, {"RouteNbr", 2}, {"MeterType", 3}, {"ResponseText", "UNIT7"}});
  for (const int32_t route : {1, 2}) {
    w.Add({{"RecType", kRecRouteHeader}, {"RouteNbr", route}, {"Initials", route == 1 ? "AB" : "CD"}});
  }
  for (const Row& row : rows) {
    w.hif.AddNew();
    w.hif.SetItem("RecType", L(row.recType));
    w.hif.SetItem("RouteNbr", L(1));
    w.hif.SetItem("MeterTagNbr", L(row.tag));
    w.hif.SetItem("Initials", Value("JQ"));
    for (const auto& [name, value] : row.fields) w.hif.SetItem(name, value);
    w.Write();
  }
}

struct MeterReportTest : ::testing::Test {
  TempDir dir;
  TestShell shell;
  FixedClock clock{CivilTime{2024, 3, 9, 10, 0, 0}};
  RecordingPrinters printers;
  MemoryUserSettings settings;

  std::filesystem::path File(const std::vector<Row>& rows = Rows()) {
    WriteReadingFile(dir / "reading.pdb", rows);
    return dir / "reading.pdb";
  }

  // The cells of one column (its X in inches from the left margin), top to
  // bottom: what stands there below its bold title, the page frame left out.
  static std::vector<std::string> Column(const RecordingDevice& device, double x) {
    std::vector<std::string> texts;
    bool titled = false;
    for (const auto& call : device.calls) {
      if (call.kind != RptCall::Text || std::round(call.x1) != std::round((x + 0.25) * 100)) continue;
      if (call.font.bold) titled = true;
      if (titled && !call.font.bold && !call.text.starts_with("Printed ")) texts.push_back(call.text);
    }
    return texts;
  }
  std::vector<std::string> Column(double x) { return Column(printers.Current(), x); }
};

TEST_F(MeterReportTest, EachMaskPrintsItsRows) {
  const auto file = File();
  const std::vector<std::pair<int32_t, std::vector<std::string>>> cases = {
      {kReportReading, {"101", "104", "105", "106", "107", "108", "109", "110", "111"}},
      {kReportException, {"103", "104", "105", "106", "107", "108", "110", "111"}},
      {kReportMissed, {"102"}},
      {kReportOrphan, {"112"}},
  };
  for (const auto& [type, tags] : cases) {
    RecordingPrinters fresh;
    clsReport report(shell, clock, fresh, settings);
    ASSERT_TRUE(report.Begin(false, file, type, ""));
    EXPECT_EQ(Column(fresh.Current(), 0), tags) << ReportTitle(type);
    EXPECT_EQ(fresh.Current().Texts()[2], ReportTitle(type));
    EXPECT_EQ(fresh.orientation, 2);
  }
}

TEST_F(MeterReportTest, CellsOfEveryKindOfRow) {
  clsReport report(shell, clock, printers, settings);
  ASSERT_TRUE(report.Begin(false, File(), 30, "All"));
  // Exception cells, their lines one text each; the wrapped range (106)
  // gets the swapped word.
  EXPECT_EQ(Column(9.4), (std::vector<std::string>{"Missed", "NO ACCESS", "Skipped", "DOG", "Low Reading",
                                                   "High Reading", "High Reading", "Rollover", "Manually Read", "LCK",
                                                   "TAMPER", "Gate", "dog", "Rollover", "Nearby:11 12"}));
  EXPECT_EQ(Column(1.5), (std::vector<std::string>{"150", "--", "150", "50", "250", "500", "400", "150*", "150",
                                                   "150", "00123", "0"}));
  EXPECT_EQ(Column(2.2), (std::vector<std::string>{"90", "90", "90", "90", "90", "90", "500", "90", "90", "90",
                                                   "124"}));
  const auto dates = Column(4.7), accounts = Column(5.6);
  EXPECT_EQ(std::vector(dates.begin(), dates.begin() + 2), (std::vector<std::string>{"2024/03/09", "13:05:09"}));
  EXPECT_EQ(std::vector(accounts.begin(), accounts.begin() + 2), (std::vector<std::string>{"A B C", "W SN1"}));
  EXPECT_EQ(Column(7.1).back(), "**Orphan Transponder **");
}

// The unit header's texts are read on a later page in the preview's test.
TEST_F(MeterReportTest, FontsOfTheUnitHeaderAndThePageFrame) {
  clsReport report(shell, clock, printers, settings);
  ASSERT_TRUE(report.Begin(false, File(), kReportReading, ""));
  const auto texts = printers.Current().Texts();
  std::map<std::string, RptFont> fonts;
  for (const auto& call : printers.Current().calls) {
    if (call.kind == RptCall::Text) fonts.emplace(call.text, call.font);
  }
  EXPECT_TRUE(fonts["UNIT7"].italic && !fonts["UNIT7"].bold);
  EXPECT_TRUE(fonts["Exception"].bold);  // every title keeps the first one's bold
  EXPECT_EQ(std::tuple(fonts["101"].bold, fonts["101"].name, fonts["101"].size), std::tuple(false, "Courier New", 8.0f));
  EXPECT_EQ(texts[texts.size() - 2], "Printed 3/9/2024");  // the company's cell is empty
  EXPECT_EQ(texts.back(), "Page 1");
}

// The window a report makes for its preview, lending the test's recorder.
struct LentPreview final : IRptPreview {
  explicit LentPreview(RecordingPreview& r) : recorder(r) {}
  IRptDevice& Picture() override { return recorder.Picture(); }
  void SizePicture(double width, double length) override { recorder.SizePicture(width, length); }
  void ClearPicture() override { recorder.ClearPicture(); }
  std::string Display(const std::string& caption) override { return recorder.Display(caption); }
  RecordingPreview& recorder;
};

TEST_F(MeterReportTest, APreviewShowsTheReportsLandscapePagesOnItsWindowOnly) {
  std::vector<Row> rows(40, Rows()[0]);
  for (size_t i = 0; i < rows.size(); ++i) rows[i].tag = 1000 + static_cast<int32_t>(i);
  const auto file = File(rows);
  clsReport report(shell, clock, printers, settings);
  EXPECT_FALSE(report.Begin(true, file, kReportReading, "")) << "nothing to preview on";
  RecordingPreview preview({"LAST"});
  report.SetPreviewWindow([&] { return std::make_unique<LentPreview>(preview); });
  ASSERT_TRUE(report.Begin(true, file, kReportReading, ""));
  EXPECT_EQ(preview.captions, (std::vector<std::string>{"Reading Report Page 1 of 3", "Reading Report Page 3 of 3"}));
  // A page break repeats the unit header and the column titles.
  const auto& last = preview.pages.back();
  EXPECT_EQ(std::vector(last.begin(), last.begin() + 9),
            (std::vector<std::string>{"hifExchange", "3/9/2024", "Reading Report", "Page 3", "Unit ID:", "Reader:",
                                      "UNIT7", "JQ", "Transponder"}));
  EXPECT_DOUBLE_EQ(preview.picture.ScaleWidth(), 11.0);
  EXPECT_DOUBLE_EQ(preview.picture.ScaleHeight(), 8.5);
  EXPECT_TRUE(printers.Current().calls.empty());
}

TEST_F(MeterReportTest, AFileWithNoMetersIsOnePageWithoutAUnitHeader) {
  clsReport report(shell, clock, printers, settings);
  ASSERT_TRUE(report.Begin(false, File({}), kReportReading, ""));
  const auto texts = printers.Current().Texts();
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "Page 1"), 2);
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "Transponder"), 0);
}

TEST_F(MeterReportTest, AnUnreadableFileIsLoggedAndFalse) {
  settings.SaveSetting("hifExchange", "Settings", "AdjustX", "0.25");
  clsReport report(shell, clock, printers, settings);
  EXPECT_FALSE(report.Begin(false, dir / "missing.pdb", kReportReading, ""));
  EXPECT_EQ(shell.log, std::vector<std::string>{"Error: Could not read HIF file"});
  EXPECT_TRUE(printers.Current().calls.empty());
  EXPECT_EQ(report.AdjustX, 0.25);
}

#ifdef HIFX_HAVE_QT
TEST_F(MeterReportTest, CommandLineWritesOnePdfAReport) {
  const auto file = File();
  const auto result = test::RunHifx(
      {"--site", (dir / "site").string(), "report", "--type", "reading,missed", "--pdf", (dir / "out.pdf").string(),
       file.string()},
      dir, {{"SOURCE_DATE_EPOCH", "1710000000"}, {"TZ", "UTC"}, {"XDG_CONFIG_HOME", (dir / "config").string()}});
  ASSERT_EQ(result.status, 0) << result.err;
  ASSERT_FALSE(std::filesystem::exists(dir / "out.pdf"));
  const std::string text = dir.path().string() + "/text.txt";
  ASSERT_EQ(std::system(("pdftotext -layout " + (dir / "out-reading.pdf").string() + " " + text).c_str()), 0);
  const std::string reading = test::ReadBytes(text);
  for (const char* expected : {"Reading Report", "Printed 3/9/2024", "Manually Read", "High Reading", "00123",
                               "Billing/Address", "Page 1"}) {
    EXPECT_NE(reading.find(expected), std::string::npos) << expected;
  }
  EXPECT_EQ(reading.find("NO ACCESS"), std::string::npos);
  ASSERT_EQ(std::system(("pdftotext " + (dir / "out-missed.pdf").string() + " " + text).c_str()), 0);
  EXPECT_NE(test::ReadBytes(text).find("NO ACCESS"), std::string::npos);

  const auto bad = test::RunHifx({"report", "--type", "orphan", "--pdf", (dir / "x.pdf").string(), "/nonexistent"},
                                 dir, {{"XDG_CONFIG_HOME", (dir / "config").string()}});
  EXPECT_EQ(bad.status, 66);
  EXPECT_EQ(bad.out, "Error: Could not read HIF file\n");
  EXPECT_EQ(bad.err.rfind("hifx: report: /nonexistent: no such file\n", 0), 0u) << bad.err;
  EXPECT_EQ(test::RunHifx({"report", "--type", "weekly", "--pdf", "x.pdf", "f"}, dir).status, 64);
}
#else
TEST_F(MeterReportTest, CommandLineSaysReportsNeedTheQtBuild) {
  const auto result = test::RunHifx({"--site", (dir / "site").string(), "report", "--type", "reading", "--pdf",
                                     (dir / "out.pdf").string(), File().string()},
                                    dir);
  EXPECT_EQ(result.status, 64);
  EXPECT_EQ(result.err, "hifx: report: PDF and printed reports need the Qt build of hifx\n");
  EXPECT_FALSE(std::filesystem::exists(dir / "out.pdf"));
}
#endif

}  // namespace
}  // namespace hifx
