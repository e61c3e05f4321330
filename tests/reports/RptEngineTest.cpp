// The page engine on a recording device: 100 pixels an inch, a character
// FontSize pixels wide and a line twice FontSize high, so positions below
// are exact.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "reports/RptEngine.h"
#include "reports/RecordingDevice.h"
#include "support/TestShell.h"

namespace hifx {
namespace {

using test::TestShell;

struct RptEngineTest : ::testing::Test {
  TestShell shell;
  FixedClock clock{CivilTime{2024, 3, 9, 10, 0, 0}};
  RecordingPrinters printers;
  RptEngine engine{shell, clock, printers};

  RecordingDevice& Device() { return printers.Current(); }

  // The texts printed, their pixel positions rounded.
  std::vector<RptCall> Texts() {
    std::vector<RptCall> texts;
    for (RptCall call : Device().calls) {
      if (call.kind != RptCall::Text) continue;
      call.x1 = std::round(call.x1);
      call.y1 = std::round(call.y1);
      texts.push_back(call);
    }
    return texts;
  }
  // Each text as "TEXT@X,Y", "*" behind a bold one.
  std::vector<std::string> Placed() {
    std::vector<std::string> placed;
    for (const auto& t : Texts()) {
      placed.push_back(t.text + "@" + std::to_string(int(t.x1)) + "," + std::to_string(int(t.y1)) + (t.font.bold ? "*" : ""));
    }
    return placed;
  }

  // A report of `rows` detail rows, one text line each ("row N"), with an
  // absolute footer "Page %p" low on the page; MarginTop 0.5 and a 0.5 line
  // (25 points) put four rows on a page under a threshold of 2.5.
  void RowsReport(int rows) {
    engine.PageSetup(8.5f, 11.0f, 0.5f, 0.5f, 0.5f, 0.5f, 2.5f);
    engine.BaseFontSize = 25;
    auto row = std::make_shared<RptElements>();
    auto footer = std::make_shared<RptElements>(RptElements{MakeElement(0.5f, 10.5f, Value("Page %p"))});
    auto count = std::make_shared<int>(0);
    engine.SetPrintEvent([=, this](int16_t code, int16_t, float& height) {
      if (code == 0) *count = 0;  // each run starts at the first row
      if (code == 6) engine.PrintElements(*footer, true);
      if (code != 4) return;
      if (++*count > rows) {
        height = -1;
        return;
      }
      *row = {MakeElement(0, 0, Value("row " + std::to_string(*count)))};
      height = engine.PrintElements(*row, false);
    });
  }
};

TEST_F(RptEngineTest, PagesBreakWhenThePositionReachesTheThreshold) {
  RowsReport(10);
  int16_t total = 0;
  EXPECT_FALSE(engine.PrintReport(0, 0, 0, &total));
  EXPECT_EQ(total, 3);
  // The absolute footer ignores the left margin and, raised while the
  // position is past the threshold, breaks no page of its own.
  EXPECT_EQ(Placed(), (std::vector<std::string>{
                          "row 1@50,50", "row 2@50,100", "row 3@50,150", "row 4@50,200", "Page 1@50,1050",
                          "row 5@50,50", "row 6@50,100", "row 7@50,150", "row 8@50,200", "Page 2@50,1050",
                          "row 9@50,50", "row 10@50,100", "Page 3@50,1050"}));
  int newPages = 0;
  for (const auto& call : Device().calls) newPages += call.kind == RptCall::NewPage;
  EXPECT_EQ(newPages, 2);
  EXPECT_EQ(Device().calls.back().kind, RptCall::EndDoc);
}

TEST_F(RptEngineTest, APageRangeIsPaintedAloneButEveryPageIsLaidOut) {
  RowsReport(10);
  RecordingDevice box;
  engine.OutputDevice = static_cast<IRptDevice*>(&box);
  int16_t total = 0;
  engine.PrintReport(2, 2, 0, &total);
  EXPECT_EQ(total, 3);
  EXPECT_EQ(box.Texts(), (std::vector<std::string>{"row 5", "row 6", "row 7", "row 8", "Page 2"}));
  for (const auto& call : box.calls) EXPECT_NE(call.kind, RptCall::NewPage);
  EXPECT_TRUE(Device().calls.empty());
}

TEST_F(RptEngineTest, AnAbortPaintsNothingMoreAndIsTheResult) {
  RowsReport(10);
  shell.abortReports = true;
  EXPECT_TRUE(engine.PrintReport(0, 0, 0));
  // The first page was painted before the status window was asked.
  EXPECT_EQ(Texts().size(), 5u);
  EXPECT_EQ(shell.statuses.front(), "{Replace with Report Title}\nRetrieving data");
  EXPECT_EQ(shell.statuses[1], "{Replace with Report Title}\nFormatting page 2\nRows processed: 0");
  EXPECT_EQ(shell.statuses.back(), "");
  // The sheet of page 2 was started before the abort was seen; no blank
  // sheet follows it.
  int newPages = 0;
  for (const auto& call : Device().calls) newPages += call.kind == RptCall::NewPage;
  EXPECT_EQ(newPages, 1);
}

TEST_F(RptEngineTest, PreviewShowsThePageAskedForAndLaysTheWholeReportOutEachTime) {
  RowsReport(10);
  engine.Title = "Rows";
  RecordingPreview preview({"NEXT", "NEXT", "NEXT", "PREV", "FIRST", "PREV", "LAST"});
  EXPECT_FALSE(engine.PreviewReport(preview));
  EXPECT_EQ(preview.captions, (std::vector<std::string>{"Rows Page 1 of 3", "Rows Page 2 of 3", "Rows Page 3 of 3",
                                                        "Rows Page 3 of 3", "Rows Page 2 of 3", "Rows Page 1 of 3",
                                                        "Rows Page 1 of 3", "Rows Page 3 of 3"}));
  EXPECT_EQ(preview.pages[1], (std::vector<std::string>{"row 5", "row 6", "row 7", "row 8", "Page 2"}));
  EXPECT_EQ(preview.pages[2], (std::vector<std::string>{"row 9", "row 10", "Page 3"}));
  const auto laidOut = std::count(shell.statuses.begin(), shell.statuses.end(), "Rows\nFormatting page 3\nRows processed: 0");
  EXPECT_EQ(laidOut, 8);
  EXPECT_TRUE(Device().calls.empty());
}

TEST_F(RptEngineTest, PrintFromThePreviewPrintsEveryPageFromTheTrayGiven) {
  RowsReport(10);
  RecordingPreview preview({"NEXT", "PRINT"});
  EXPECT_FALSE(engine.PreviewReport(preview, 2));
  EXPECT_EQ(preview.captions.size(), 2u);
  EXPECT_EQ(Texts().size(), 13u);
  EXPECT_EQ(printers.paperBin, 2);
  EXPECT_EQ(Device().calls.back().kind, RptCall::EndDoc);
}

struct PrintElementsTest : RptEngineTest {
  // Prints the elements once, as the detail of a one-row report.
  float Print(RptElements elements, bool absolute = false) {
    float used = 0;
    bool done = false;
    engine.SetPrintEvent([&](int16_t code, int16_t, float& height) {
      if (code != 4) return;
      if (done) {
        height = -1;
        return;
      }
      done = true;
      used = engine.PrintElements(elements, absolute);
    });
    engine.PrintReport(0, 0, 0);
    return used;
  }
};

TEST_F(PrintElementsTest, NegativeYAndXContinueTheElementBefore) {
  const float used = Print({MakeElement(0, 1.0f, Value("A")), MakeElement(2.0f, -1, Value("B")),
                            MakeElement(-1, -1, Value("C")), MakeElement(0, 2.0f, Value::Long(7))});
  // 1.0 below the top margin of 0.5; B 2.0 right of the left margin, C
  // behind it, one 10-point character wide.
  EXPECT_EQ(Placed(), (std::vector<std::string>{"A@50,150", "B@250,150", "C@260,150", "7@50,250"}));
  EXPECT_FLOAT_EQ(used, 2.2f);  // the last text's foot less the section's top
}

TEST_F(PrintElementsTest, StyleBitsAndWhatTheyLeaveBehind) {
  Print({MakeElement(0, 0, Value("bold"), kJustifyLeft, kStyleBold),
         MakeElement(0, 0, Value("still bold"), kJustifyLeft, 0),
         MakeElement(0, 0, Value("six"), kJustifyLeft, kStyleBold | kStyleItalic),
         MakeElement(0, 0, Value("plain"), kJustifyLeft, kStylePlain | kStyleItalic),
         MakeElement(0, 0, Value("hidden"), kJustifyLeft, kStyleHidden | kStyleBold),
         MakeElement(0, 0, Value("italic"), kJustifyLeft, kStyleItalic),
         MakeElement(0, 0, Value("plain again"), kJustifyLeft, kStylePlain)});
  const std::vector<std::tuple<std::string, bool, bool>> expected = {
      {"bold", true, false}, {"still bold", true, false}, {"six", false, true},
      {"plain", false, false}, {"italic", false, true}, {"plain again", false, false}};
  std::vector<std::tuple<std::string, bool, bool>> seen;
  for (const auto& t : Texts()) seen.emplace_back(t.text, t.font.bold, t.font.italic);
  EXPECT_EQ(seen, expected);
}

TEST_F(PrintElementsTest, MarkupTagsTurnTheFontInsideOneLine) {
  Print({MakeElement(0, 0, Value("plain <b>word</b> more <5 stays"))});
  // "<5" is not a tag: printed from the element's X like any untagged segment.
  EXPECT_EQ(Placed(), (std::vector<std::string>{"plain @50,50", "word@110,50*", " more @150,50", "<5 stays@50,50"}));
}

TEST_F(PrintElementsTest, WrappedLinesJustifiedAndRuled) {
  Print({MakeElement(5.0f, 0, Value("ab cd"), kJustifyRight, kStyleRule, {}, 0, 0.3f),
         MakeElement(5.0f, 1.0f, Value("%p/%t"), kJustifyCenter, kStyleDoubleRule)});
  // Right-justified lines end at 5.0 + the margin; the centred one is
  // centred on it.
  EXPECT_EQ(Placed(), (std::vector<std::string>{"ab @520,50", "cd@530,70",
                                                "1/{Replace with Report Title}@" + std::to_string(550 - 29 * 10 / 2) + ",150"}));
  std::vector<std::array<double, 3>> rules;  // y, from, to
  for (const auto& c : Device().calls) {
    if (c.kind == RptCall::Line) rules.push_back({std::round(c.y1), std::round(c.x1), std::round(c.x2)});
  }
  const std::vector<std::array<double, 3>> expected = {
      {50, 520, 550}, {70, 530, 550}, {145, 405, 695}, {150, 405, 695}};
  EXPECT_EQ(rules, expected);
}

TEST_F(PrintElementsTest, ShapesAndTheirExtent) {
  const float used = Print({MakeLine(0, 0, 1.0f, 0), MakeBox(1.0f, 0, 1.0f, 0.5f), MakeSolid(3.0f, 0, 0.5f, 0.75f)});
  std::vector<RptCall::Kind> kinds;
  for (const auto& c : Device().calls) {
    if (c.kind == RptCall::Line || c.kind == RptCall::Fill) kinds.push_back(c.kind);
  }
  EXPECT_EQ(kinds, (std::vector<RptCall::Kind>{RptCall::Line, RptCall::Line, RptCall::Line, RptCall::Line,
                                               RptCall::Line, RptCall::Fill}));
  const RptCall& fill = Device().calls[Device().calls.size() - 2];
  EXPECT_EQ(fill.x1, 350);
  EXPECT_EQ(fill.x2, 51);  // both corners' pixels
  EXPECT_EQ(fill.drawMode, kDrawNotMergePen);
  EXPECT_EQ(Device().DrawMode(), kDrawNotXorPen);
  EXPECT_FLOAT_EQ(used, 0.75f);
}

TEST_F(PrintElementsTest, ValuesByKind) {
  auto picture = std::make_shared<RptPicture>(RptPicture{2, 1, 50.0, {0xFF000000u, 0xFFFFFFFFu}});
  auto box = std::make_shared<RptPictureBox>(RptPictureBox{*picture});
  clsPrintElement formatted = MakeElement(0, 0, Value::Double(3.14159), kJustifyLeft, 0, {}, 0, 0, "000.00");
  clsPrintElement dated = MakeElement(0, 0, Value::Date(DateSerial(2024, 3, 9)));
  clsPrintElement stretched = MakeElement(1.0f, 0, std::shared_ptr<const RptPicture>(picture));
  stretched.Width = 0.5f;
  stretched.Height = 0.25f;
  Print({MakeElement(0, 0, Value::Null(), kJustifyLeft, 0, "n/a"), formatted, dated,
         MakeElement(1.0f, 0, std::shared_ptr<const RptPicture>(picture)), stretched,
         MakeElement(2.0f, 0, std::shared_ptr<const RptPictureBox>(box))});
  EXPECT_EQ(Device().Texts(), (std::vector<std::string>{"003.14", "3/9/2024"}));
  std::vector<std::array<double, 4>> pictures;
  for (const auto& c : Device().calls) {
    if (c.kind == RptCall::Picture) pictures.push_back({c.x1, c.y1, c.x2, c.y2});
  }
  // Natural size (2 by 1 pixels at 50 an inch), stretched, and the box's
  // pixels copied one for one.
  const std::vector<std::array<double, 4>> expected = {{150, 50, 4, 2}, {150, 50, 50, 25}, {250, 50, 2, 1}};
  EXPECT_EQ(pictures, expected);
}

TEST_F(RptEngineTest, WraptoWidth) {
  engine.OutputDevice = static_cast<IRptDevice*>(&Device());
  engine.SetPrintEvent([](int16_t, int16_t, float& height) { height = -1; });
  engine.PrintReport(0, 0, 0);  // makes the device the engine's
  Device().SetFontSize(10);     // 0.1 in a character
  struct Case {
    std::string text;
    float width;
    std::string wrapped;
  };
  const Case cases[] = {
      {"hello world foo", 1.0f, "hello \r\nworld foo"},
      {"aaaa,bbbbbbbb", 0.6f, "aaaa,\r\nbbbbbb\r\nbb"},
      {"abcdefghij", 0.4f, "abcd\r\nefgh\r\nij"},  // no space or comma: cut where it fits
      {"  one\r\ntwo  ", 5.0f, "one\r\ntwo"},
      {"one\r\n\r\ntwo three", 5.0f, "one\r\n"},  // two breaks in a row drop the rest
      {std::string(45, 'x'), 2.0f, "xxxxxxxxxxxxxxxxxxxx\r\nxxxxxxxxxxxxxxxxxxxx\r\nxxxxx"},
      {"abc", 0.05f, ""},
  };
  for (const Case& c : cases) EXPECT_EQ(engine.WraptoWidth(c.text, c.width), c.wrapped) << c.text;
}

TEST_F(RptEngineTest, CreateGroupLevels) {
  EXPECT_TRUE(engine.CreateGroup(0, 0.5f, {"Route", "cycle"}));
  EXPECT_TRUE(engine.CreateGroup(3, 0.25f, {"Meter"}));
  ASSERT_EQ(engine.Groups().size(), 3u);
  EXPECT_EQ(engine.Groups()[0].fields, "ROUTE|CYCLE");
  EXPECT_EQ(engine.Groups()[0].level, 1);
  EXPECT_EQ(engine.Groups()[2].height, 0.25f);
  EXPECT_EQ(engine.Groups()[1].level, 0);  // grown over, never made
  for (const int16_t level : {int16_t{10}, int16_t{-1}}) {
    EXPECT_FALSE(engine.CreateGroup(level, 0, {"X"}));
    EXPECT_EQ(shell.questions.back().text,
              "Attempted to create group level: " + std::to_string(level) + ".  Only levels 1-9 allowed.");
  }
  EXPECT_EQ(engine.Groups().size(), 3u);
}

TEST_F(RptEngineTest, ThresholdFollowsLengthAndBottomMarginButNotPageSetup) {
  EXPECT_FLOAT_EQ(engine.OverFlowThreshold, 10.5f);
  engine.PageSetup(11.0f, 8.5f, 0.25f, 0.5f, 0.2f, 0.75f, 7.25f);
  EXPECT_FLOAT_EQ(engine.OverFlowThreshold, 7.25f);
  EXPECT_FLOAT_EQ(engine.PrintWidth(), 10.25f);
  engine.SetMarginBottom(1.0f);
  EXPECT_FLOAT_EQ(engine.OverFlowThreshold, 7.5f);
}

TEST(RptEngineSetup, APrinterByNameIsUsedForTheRunOnly) {
  TestShell shell;
  FixedClock clock{CivilTime{}};
  RecordingPrinters printers({"Office Printer", "HP LaserJet 4 (Room 2)"});
  RptEngine engine(shell, clock, printers);
  engine.SetPrintEvent([&](int16_t code, int16_t, float& height) {
    RptElements one{MakeElement(0, 0, Value("x"))};
    if (code == 2) engine.PrintElements(one, false);
    if (code == 4) height = -1;
  });
  engine.OutputDevice = std::string("laserjet");
  engine.PrintReport(0, 0, 2);
  EXPECT_EQ(printers.Device("HP LaserJet 4 (Room 2)").Texts(), std::vector<std::string>{"x"});
  EXPECT_TRUE(printers.Device("Office Printer").calls.empty());
  EXPECT_EQ(printers.DeviceName(), "Office Printer");
  EXPECT_EQ(printers.paperBin, 2);
  EXPECT_FALSE(engine.SetPrinter(""));
  EXPECT_FALSE(engine.SetPrinter("canon"));
}

}  // namespace
}  // namespace hifx
