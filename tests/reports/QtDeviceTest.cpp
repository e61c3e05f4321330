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
#include "support/ReadingHif.h"
#include "support/RunHifx.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

// Qt last: its keywords would stand for the words of the headers above.
#include <QtGui/QImage>

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
    image.SavePng(png);
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
  EXPECT_EQ(result.err, "hifx: report: wrote " + pdf.string() + " (1 page) in " +
                            result.err.substr(result.err.rfind(" in ") + 4));
  ASSERT_EQ(std::system(("pdftoppm -r 50 -gray -f 1 -l 1 " + pdf.string() + " " + (dir / "page").string()).c_str()), 0);
  // Landscape letter at 50 pixels an inch, some ink on it.
  const std::string pgm = test::ReadBytes(dir / "page-1.pgm");
  ASSERT_EQ(pgm.substr(0, 11), "P5\n550 425\n");
  size_t dark = 0;
  for (size_t i = pgm.size() - 550 * 425; i < pgm.size(); ++i) dark += static_cast<unsigned char>(pgm[i]) < 128;
  EXPECT_GT(dark, 1000u);
  EXPECT_EQ(Output("pdffonts " + pdf.string() + " | grep -c Liberation"), "3");
}

// A report's PDF says what it is: its title as printed (in the report's code
// page), the site as its author, the report's kind and the clock's moment,
// in an update appended to the file as drawn, whose pages stay as they were.
TEST_F(QtDeviceTest, APdfSaysWhatItIsAndWhen) {
  if (Output("command -v pdfinfo").empty()) GTEST_SKIP() << "no pdfinfo";
  const test::Env env{{"SOURCE_DATE_EPOCH", "1710000000"}, {"TZ", "UTC"}, {"XDG_CONFIG_HOME", (dir / "config").string()}};
  const auto run = test::RunHifx({"--site", (dir / "North Water").string() + "/", "report", "--type", "missed",
                                  "--title", "Caf\xe9 (route 7)", "--pdf", (dir / "a.pdf").string(),
                                  test::kExamples + "reading.pdb"},
                                 dir, env);
  ASSERT_EQ(run.status, 0) << run.err;
  const std::string pdf = test::ReadBytes(dir / "a.pdf");
  const std::string info = Output("TZ=UTC pdfinfo -isodates " + (dir / "a.pdf").string() + " 2>&1");
  for (const char* line : {"Title:           Caf\xc3\xa9 (route 7)\n", "Author:          North Water\n",
                           "Subject:         Missed Report\n", "CreationDate:    2024-03-09T16:00:00",
                           "Creator:         hifx\n"}) {
    EXPECT_NE(info.find(line), std::string::npos) << line << "\n" << info;
  }
  EXPECT_EQ(info.find("rror"), std::string::npos) << info;  // no syntax error, the cross-references sound
  // The file up to its first end is the file as drawn: the same text is read
  // from it.
  test::WriteBytes(dir / "qt.pdf", pdf.substr(0, pdf.find("%%EOF\n") + 6));
  const std::string text = Output("pdftotext " + (dir / "a.pdf").string() + " - 2>&1");
  EXPECT_NE(text.find("Caf"), std::string::npos) << text;
  EXPECT_EQ(Output("pdftotext " + (dir / "qt.pdf").string() + " - 2>&1"), text);
  EXPECT_EQ(Output("pdfinfo " + (dir / "qt.pdf").string() + " 2>&1").find("Author:"), std::string::npos);
}

// A line is set in a PDF as text that reads back and ends where it was
// measured to end: the font's own glyphs at their advances. An underlined
// line has its rule under the whole of it.
TEST_F(QtDeviceTest, APdfLineReadsBackAndEndsWhereItWasMeasured) {
  if (Output("command -v pdftotext").empty()) GTEST_SKIP() << "no pdftotext";
  const auto pdf = dir / "lines.pdf";
  struct Line {
    std::string font;
    bool underline;
    std::string text;
    std::string words;  // as they read back
  };
  const Line lines[] = {
      {"Arial", false, "Caf\xe9 \x80 5 WWii", "Caf\xc3\xa9 \xe2\x82\xac 5 WWii"},
      {"Courier New", false, "Acct 00012 (x)", "Acct 00012 (x)"},
      {"Arial", true, "Under lined", "Under lined"},
  };
  std::vector<double> ends;  // in points from the page's left
  {
    const auto printers = QtPrinters::ToPdf(pdf);
    IRptDevice& page = printers->Printer();
    page.SetScaleMode(kScaleInches);
    double y = 1;
    for (const Line& line : lines) {
      page.SetFontName(line.font);
      page.SetFontSize(12);
      page.SetFontUnderline(line.underline);
      page.SetCurrentX(1);
      page.SetCurrentY(y);
      page.Print(line.text);
      ends.push_back((1 + page.TextWidth(line.text)) * 72);
      y += 0.5;
    }
    page.EndDoc();
    printers->Finish();
  }
  const std::string text = Output("pdftotext -layout " + pdf.string() + " - 2>&1");
  const std::string boxes = Output("pdftotext -bbox " + pdf.string() + " - 2>&1");
  size_t at = 0;
  for (size_t i = 0; i < std::size(lines); ++i) {
    EXPECT_NE(text.find(lines[i].words), std::string::npos) << text;
    // The line's last word ends where the line was measured to end.
    const std::string last = lines[i].words.substr(lines[i].words.rfind(' ') + 1);
    at = boxes.find(">" + last + "</word>", at);
    ASSERT_NE(at, std::string::npos) << boxes;
    const size_t xMax = boxes.rfind("xMax=\"", at) + 6;
    EXPECT_NEAR(std::stod(boxes.substr(xMax)), ends[i], 0.05) << lines[i].text;
  }
  // At 72 pixels an inch a pixel is a point: a row under the last line's
  // words is dark from its start to its end.
  const size_t word = boxes.rfind("<word", at);
  const double top = std::stod(boxes.substr(boxes.find("yMin=\"", word) + 6));
  const double bottom = std::stod(boxes.substr(boxes.find("yMax=\"", word) + 6));
  ASSERT_EQ(std::system(("pdftoppm -r 72 -gray " + pdf.string() + " " + (dir / "lines").string()).c_str()), 0);
  const std::string pgm = test::ReadBytes(dir / "lines-1.pgm");
  ASSERT_EQ(pgm.substr(0, 11), "P5\n612 792\n");
  const size_t pixels = pgm.size() - 612 * 792;
  bool ruled = false;
  for (auto row = static_cast<size_t>(top); row <= static_cast<size_t>(bottom) + 2 && !ruled; ++row) {
    size_t dark = 0;
    for (auto x = static_cast<size_t>(73); x < static_cast<size_t>(ends[2] - 1); ++x) {
      dark += static_cast<unsigned char>(pgm[pixels + row * 612 + x]) < 160;
    }
    ruled = dark + 2 >= static_cast<size_t>(ends[2] - 1) - 73;
  }
  EXPECT_TRUE(ruled) << "no rule under \"Under lined\"";
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
  EXPECT_EQ(missing.status, 73);
  EXPECT_NE(missing.err.find("Could not open " + (dir / "no").string()), std::string::npos) << missing.err;
  std::filesystem::copy_file(reading, dir / "reading.pdb");
  const std::string before = test::ReadBytes(dir / "reading.pdb");
  const auto same = test::RunHifx(
      {"report", "--type", "reading", "--pdf", (dir / "reading.pdb").string(), (dir / "reading.pdb").string()}, dir,
      env);
  EXPECT_EQ(same.status, 64);
  EXPECT_NE(same.err.find("is the same file as the reading file"), std::string::npos) << same.err;
  EXPECT_EQ(test::ReadBytes(dir / "reading.pdb"), before);
}

// The preview's picture as a window would show it, keeping each page shown
// and going on to the next.
struct PicturePreview final : IRptPreview {
  explicit PicturePreview(std::vector<QImage>& into) : shown(into) {}
  IRptDevice& Picture() override { return picture; }
  void SizePicture(double width, double length) override { picture.Resize(width, length); }
  void ClearPicture() override { picture.Clear(); }
  std::string Display(const std::string&) override {
    shown.push_back(picture.Image().copy());
    return shown.size() < 3 ? "NEXT" : "CLOSE";
  }
  QtImageDevice picture{8.5, 11.0, 96};
  std::vector<QImage>& shown;
};

// Pixels darker than mid-grey in one picture and not the other, looked for
// one pixel around, so that a glyph's edge falling one pixel over counts
// as agreeing.
int64_t InkNotMatched(const QImage& a, const QImage& b) {
  const auto ink = [](const QImage& image, int x, int y) {
    return x >= 0 && y >= 0 && x < image.width() && y < image.height() && qGray(image.pixel(x, y)) < 128;
  };
  int64_t unmatched = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) {
      if (!ink(a, x, y)) continue;
      bool near = false;
      for (int dy = -1; dy <= 1 && !near; ++dy) {
        for (int dx = -1; dx <= 1 && !near; ++dx) near = ink(b, x + dx, y + dy);
      }
      unmatched += !near;
    }
  }
  return unmatched;
}

int64_t Ink(const QImage& image) {
  int64_t ink = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) ink += qGray(image.pixel(x, y)) < 128;
  }
  return ink;
}

// The page the preview shows, the page of the PDF as poppler draws it, and
// the picture `report --png` writes are one page: the pictures the same to
// the pixel, the PDF within 2% of the ink either way (its glyphs are drawn
// by another rasteriser, anti-aliased differently).
TEST_F(QtDeviceTest, ThePreviewPageIsThePdfPageAndThePngPage) {
  const auto reading = dir / "reading.pdb";
  test::WriteReadingHif(reading, 60);
  const test::Env env{{"SOURCE_DATE_EPOCH", "1710000000"}, {"TZ", "UTC"}, {"XDG_CONFIG_HOME", (dir / "config").string()}};
  for (const char* output : {"--pdf", "--png"}) {
    const auto out = dir / (std::string(output) == "--pdf" ? "reading.pdf" : "pictures");
    const auto run = test::RunHifx({"report", "--type", "reading", output, out.string(), reading.string()}, dir, env);
    ASSERT_EQ(run.status, 0) << run.err;
  }
  ASSERT_EQ(std::system(("pdftoppm -r 96 -png -f 2 -l 2 " + (dir / "reading.pdf").string() + " " +
                         (dir / "pdf").string()).c_str()), 0);

  test::TestShell shell;
  const FixedClock clock{CivilTime{2024, 3, 9, 16, 0, 0}};
  MemoryUserSettings settings;
  const auto printers = QtPrinters::ToPdf(dir / "unused.pdf");
  clsReport report(shell, clock, *printers, settings);
  std::vector<QImage> shown;
  report.SetPreviewWindow([&] { return std::make_unique<PicturePreview>(shown); });
  ASSERT_TRUE(report.Begin(true, reading, kReportReading, ""));
  ASSERT_EQ(shown.size(), 3u);  // pages 1, 2 and 3 of 3

  const QImage png(QString::fromStdString((dir / "pictures" / "reading-00002.png").string()));
  const QImage pdf(QString::fromStdString((dir / "pdf-2.png").string()));
  const QImage page = shown[1].convertToFormat(png.format());
  EXPECT_EQ(page.size(), QSize(1056, 816));
  EXPECT_TRUE(page == png);
  ASSERT_EQ(pdf.size(), page.size());
  const int64_t ink = Ink(page);
  EXPECT_GT(ink, 20000);
  EXPECT_LT(InkNotMatched(page, pdf), ink / 50);
  EXPECT_LT(InkNotMatched(pdf, page), ink / 50);
  // A picture for each page of the PDF.
  const std::string pages = Output("pdfinfo " + (dir / "reading.pdf").string() + " | awk '/^Pages:/ {print $2}'");
  EXPECT_TRUE(std::filesystem::exists(dir / "pictures" / ("reading-0000" + pages + ".png"))) << pages;
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir / "pictures"), {}), std::stoi(pages));
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
