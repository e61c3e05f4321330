// The Qt surfaces: barcodes drawn on an image that a real decoder (zbarimg)
// reads back, the metric-compatible fonts that stand for Arial and Courier
// New, a page of the Reading Report rendered to PNG, and the per-user
// settings store.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "base/Clock.h"
#include "reports/clsDrawBarcode.h"
#include "reports/clsReport.h"
#include "reports/qt/QtRptDevice.h"
#include "support/ExampleSite.h"
#include "support/FaultDevice.h"
#include "support/RunHifx.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx {
namespace {

using test::TempDir;

// What a command prints on standard output.
std::string Output(const std::string& command) {
  std::string out;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    char buf[512];
    for (size_t n; (n = fread(buf, 1, sizeof buf, pipe)) > 0;) out.append(buf, n);
    pclose(pipe);
  }
  while (!out.empty() && (out.back() == '\n' || out.back() == '\r')) out.pop_back();
  return out;
}

struct QtDeviceTest : ::testing::Test {
  static void SetUpTestSuite() { session = new QtReportSession(); }
  static void TearDownTestSuite() { delete session; }
  static inline QtReportSession* session = nullptr;
  TempDir dir;
};

TEST_F(QtDeviceTest, ADecoderReadsTheBarcodes) {
  struct Case {
    int16_t symbology;
    std::string text;
    std::string decoded;
  };
  const Case cases[] = {
      {kCode39, "HIFX-123", "HIFX-123"},
      {kCode128, "AB123456C", "AB123456C"},
      // Nineteen characters take a check digit and stay in code set C.
      {kCode128, "1234567890123456789", "12345678901234567890"},
      {kInterleaved2of5, "123456701", "12345670"},  // the odd last digit is dropped
  };
  for (const Case& c : cases) {
    QtImageDevice image(4.0, 1.5, 300);
    clsDrawBarcode().Draw(c.symbology, image, 0.5f, 0.25f, 0.8f, 3, c.text);
    const auto png = dir / "barcode.png";
    ASSERT_TRUE(image.SavePng(png));
    EXPECT_EQ(Output("zbarimg --quiet --raw " + test::ShellQuote(png.string()) + " 2>/dev/null"), c.decoded) << c.text;
  }
}

TEST_F(QtDeviceTest, ArialAndCourierNewMeasureAsTheyShould) {
  QtImageDevice image(8.5, 11, 600);
  image.SetFontName("Courier New");
  image.SetFontSize(8);
  // 0.6 em a character, less the rounding of the font to whole pixels.
  EXPECT_NEAR(image.TextWidth("0123456789"), 10 * 0.6 * 8 / 72, 0.005);
  image.SetFontName("Arial");
  image.SetFontSize(10);
  // Arial's advances: H 722, e 556, l 222, l 222, o 556 thousandths of an em.
  EXPECT_NEAR(image.TextWidth("Hello"), 2.278 * 10 / 72, 0.002);
  image.SetFontBold(true);
  EXPECT_GT(image.TextWidth("Hello"), 2.278 * 10 / 72 + 0.005);
}

TEST_F(QtDeviceTest, AReportPageRendered) {
  const auto pdf = dir / "reading.pdf";
  const auto result = test::RunHifx(
      {"report", "--type", "reading", "--pdf", pdf.string(), test::kExamples + "reading.pdb"},
      dir, {{"SOURCE_DATE_EPOCH", "1710000000"}, {"TZ", "UTC"}, {"XDG_CONFIG_HOME", (dir / "config").string()}});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  ASSERT_EQ(std::system(("pdftoppm -r 50 -gray -f 1 -l 1 " + pdf.string() + " " + (dir / "page").string()).c_str()), 0);
  // Landscape letter at 50 pixels an inch, some ink on it.
  const std::string pgm = test::ReadBytes(dir / "page-1.pgm");
  ASSERT_EQ(pgm.substr(0, 11), "P5\n550 425\n");
  size_t dark = 0;
  for (size_t i = pgm.size() - 550 * 425; i < pgm.size(); ++i) dark += static_cast<unsigned char>(pgm[i]) < 128;
  EXPECT_GT(dark, 1000u);
  EXPECT_EQ(Output("pdffonts " + pdf.string() + " | grep -c Liberation"), "3");
}

// A PDF is written whole or not at all: on a device that fails, the old
// file stays and the failure names it.
TEST_F(QtDeviceTest, APdfThatCannotBeWrittenLeavesTheOldFile) {
  const auto pdf = dir / "report.pdf";
  for (const test::FaultAt at : {test::FaultAt::Bytes, test::FaultAt::Sync, test::FaultAt::Rename}) {
    test::WriteBytes(pdf, "OLD BYTES");
    test::TestShell shell;
    const FixedClock clock{CivilTime{2024, 3, 9, 16, 0, 0}};
    QtUserSettings settings;
    const auto printers = QtPrinters::ToPdf(pdf);
    clsReport report(shell, clock, *printers, settings);
    ASSERT_TRUE(report.Begin(false, test::kExamples + "reading.pdb", 4, "Reading"));
    test::FaultDevice device(at, "report.pdf", 1000);
    ScopedFileDevice faulty(device);
    try {
      printers->Finish();
      ADD_FAILURE() << "no failure";
    } catch (const WriteFailure& failure) {
      EXPECT_NE(failure.Description().find("report.pdf"), std::string::npos) << failure.Description();
    }
    EXPECT_EQ(test::ReadBytes(pdf), "OLD BYTES");
  }
  // From the command line: a folder that isn't there, and the reading file
  // itself, are refused with a word and a non-zero exit.
  const std::string reading = test::kExamples + "reading.pdb";
  const test::Env env{{"XDG_CONFIG_HOME", (dir / "config").string()}};
  const auto missing = test::RunHifx({"report", "--type", "reading", "--pdf", (dir / "no" / "r.pdf").string(), reading},
                                     dir, env);
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.err.find("Could not open " + (dir / "no").string()), std::string::npos) << missing.err;
  std::filesystem::copy_file(reading, dir / "reading.pdb");
  const std::string before = test::ReadBytes(dir / "reading.pdb");
  const auto same = test::RunHifx(
      {"report", "--type", "reading", "--pdf", (dir / "reading.pdb").string(), (dir / "reading.pdb").string()}, dir,
      env);
  EXPECT_EQ(same.status, 2);
  EXPECT_NE(same.err.find("is the same file as the reading file"), std::string::npos) << same.err;
  EXPECT_EQ(test::ReadBytes(dir / "reading.pdb"), before);
}

TEST_F(QtDeviceTest, UserSettingsLastBetweenRuns) {
  setenv("XDG_CONFIG_HOME", dir.path().c_str(), 1);
  QtUserSettings().SaveSetting("hifExchange", "Reports", "Options", "6");
  EXPECT_EQ(QtUserSettings().GetSetting("hifExchange", "Reports", "Options", "0"), "6");
  EXPECT_EQ(QtUserSettings().GetSetting("hifExchange", "Settings", "AdjustX", "0"), "0");
  EXPECT_TRUE(std::filesystem::exists(dir / "hifexchange" / "hifExchange.ini"));
}

}  // namespace
}  // namespace hifx
