// What the desktop program's windows decide without a toolkit: where a
// window goes, how the program starts, the report choice, the login and
// the prompt window's checks, the guard against a second run, and the page
// preview's keys and zoom.
#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

#include "base/UserSettings.h"
#include "reports/clsReport.h"
#include "shell/DialogLogic.h"
#include "shell/MainWindowLogic.h"
#include "shell/Placement.h"
#include "shell/PreviewLogic.h"
#include "shell/StartUp.h"
#include "support/RouteSite.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

using namespace hifx::shell;

void Save(MemoryUserSettings& settings, std::string_view key, std::string_view value) {
  settings.SaveSetting(kPlacementApp, "frmMain", key, value);
}
std::string Saved(MemoryUserSettings& settings, std::string_view key) {
  return settings.GetSetting(kPlacementApp, "frmMain", key, "<none>");
}
// A plan as "state top left height width splitter", "-" for each part it
// leaves as designed.
std::string Plan(MemoryUserSettings& settings, bool splitter) {
  const PlacementPlan plan = LoadPlacement(settings, "frmMain", splitter);
  std::string text = plan.state ? std::to_string(static_cast<int>(*plan.state)) : "-";
  for (const std::optional<int>& n : {plan.top, plan.left, plan.height, plan.width, plan.splitter}) {
    text += " " + (n ? std::to_string(*n) : "-");
  }
  return text;
}

TEST(Placement, ASavedPlaceIsUsedWhereItCanBeRight) {
  MemoryUserSettings settings;
  EXPECT_EQ(Plan(settings, true), "- - - - - -") << "nothing saved: the designed place";
  SavePlacement(settings, "frmMain", WindowState::Normal, {30, 40, 500, 700}, 120);
  EXPECT_EQ(Plan(settings, true), "0 30 40 500 700 120");
  // A sliver of a window and an edge off a second screen are not used; the
  // rest of the place is.
  Save(settings, "Width", "150");
  Save(settings, "Left", "-5");
  EXPECT_EQ(Plan(settings, false), "0 30 - 500 - -");
  Save(settings, "Width", "200");
  Save(settings, "Left", "0");
  EXPECT_EQ(Plan(settings, false), "0 30 0 500 200 -");
  Save(settings, "WindowState", "1");
  EXPECT_EQ(Plan(settings, false), "- - - - - -") << "a minimized state is ignored";
}

TEST(Placement, AMaximizedWindowKeepsItsNormalPlaceAndAMinimizedOneSavesNothing) {
  MemoryUserSettings settings;
  SavePlacement(settings, "frmMain", WindowState::Normal, {30, 40, 500, 700}, 120);
  SavePlacement(settings, "frmMain", WindowState::Maximized, {0, 0, 900, 1200}, 300);
  EXPECT_EQ(Saved(settings, "WindowState") + " " + Saved(settings, "Width"), "2 700");
  EXPECT_EQ(Saved(settings, "SplitterNormal") + " " + Saved(settings, "SplitterMaximized"), "120 300");
  EXPECT_EQ(Plan(settings, true), "2 - - - - 300");

  SavePlacement(settings, "frmMain", WindowState::Normal, {30, 40, 500, 700});
  SavePlacement(settings, "frmMain", WindowState::Minimized, {-32000, -32000, 20, 160}, 5);
  EXPECT_EQ(Saved(settings, "WindowState") + " " + Saved(settings, "Top") + " " + Saved(settings, "SplitterMaximized"),
            "0 30 300");
}

struct ViewsSeen final : IStartUpViews {
  void ShowSplash() override { steps += "splash "; }
  bool RunLogin() override {
    steps += "login ";
    return loginPasses;
  }
  void ShowMain() override { steps += "main "; }
  void HideSplash() override { steps += "hide "; }
  bool loginPasses = false;
  std::string steps;
};

TEST(StartUp, TheLoginGuardsTheMainWindowUnlessTheWordPassesItOver) {
  struct Case {
    const char* commandLine;
    bool security, loginPasses, starts;
    const char* steps;
  };
  const Case cases[] = {
      {"", false, false, true, "splash main hide "},
      {"", true, true, true, "splash login main hide "},
      {"--site /srv/x", true, false, false, "splash login hide "},
      {"skipit", true, false, true, "splash main hide "},
      {"/SkipIt2", true, false, true, "splash main hide "},
      {"SKIP IT", true, false, false, "splash login hide "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.commandLine);
    ViewsSeen views;
    views.loginPasses = c.loginPasses;
    EXPECT_EQ(StartUp(c.commandLine, c.security, views), c.starts);
    EXPECT_EQ(views.steps, c.steps);
  }
}

TEST(StartUp, TheTitleBearsTheVersionUnlessTheProgramIsTallyDesk) {
  EXPECT_EQ(MainWindowTitle("TallyDesk", "Meter Exchange", 3, 0, 7), "Meter Exchange");
}

// The main window's test meets the question on every start of a site not
// set up; here the settings are read again after the load, and what the load
// left in the object alone does not count.
TEST(SetupOffer, TheSettingsAreReadAgainAfterTheLoad) {
  RouteSite site;
  clsExchange& exchange = site.Exchange();
  site.shell.answers = {MsgAnswer::Yes};
  OfferSetup(exchange, site.shell, [&] { exchange.RouteMap = "changed by the load"; });
  EXPECT_EQ(exchange.RouteMap, "");
}

struct ChoicesGiven final : IReportChoice {
  std::vector<int32_t> masks;
  size_t next = 0;
  bool unloaded = false;
  int32_t Display() override { return next < masks.size() ? masks[next++] : 0; }
  void Unload() override { unloaded = true; }
};

TEST(ReportChoice, PreviewsReturnToTheChoiceAndPrintingRunsEachReportInItsOrder) {
  TestShell shell;
  ChoicesGiven choice;
  choice.masks = {kReportReading | kReportPreview, kReportMissed | kReportReading | kReportException, kReportOrphan};
  std::vector<std::string> runs;
  ChooseReports(choice, shell, [&](bool preview, int32_t type, const std::string& title) {
    runs.push_back((preview ? "preview " : "print ") + std::to_string(type) + " " + title);
  });
  EXPECT_EQ(runs, (std::vector<std::string>{"preview 4 ", "print 2 Exception Report", "print 4 Reading Report",
                                            "print 16 Missed Report"}));
  EXPECT_EQ(choice.next, 2U) << "printing ends the choice";
  EXPECT_TRUE(choice.unloaded);

  ChoicesGiven closed;
  runs.clear();
  ChooseReports(closed, shell, [&](bool, int32_t, const std::string&) { runs.emplace_back("run"); });
  EXPECT_TRUE(runs.empty());
  EXPECT_TRUE(closed.unloaded);
}

// The window's test meets each refusal with its message; here the spaces and
// case it does not try, and a site with no logins.
TEST(Login, OnlyASupervisorGetsInByAPasswordInAnyCase) {
  RouteSite site;
  clsAdvanced& advanced = site.Exchange().Advanced();
  EXPECT_EQ(CheckLogin(advanced, "SUPER", "pw"), LoginResult::Invalid) << "an empty list lets nobody in";
  advanced.AddLogin("SUPER", "Secret", "S");
  advanced.AddLogin("READER", "read1", "");
  EXPECT_EQ(CheckLogin(advanced, " super ", " sECRET "), LoginResult::Accepted);
  EXPECT_EQ(CheckLogin(advanced, "  ", "x"), LoginResult::NameMissing);
  EXPECT_EQ(CheckLogin(advanced, "NOBODY", "read1"), LoginResult::Invalid);
}

TEST(Prompts, RequiredTextFieldsAreCheckedBeforeNumberFields) {
  const std::vector<PromptField> fields = {
      {"Reader", 0, false}, {"Cycle", 1, true}, {"Book", 0, true}, {"Rate", 3, true}};
  EXPECT_EQ(MissingPrompt(fields, {"", "", "", ""}), "Book");
  EXPECT_EQ(MissingPrompt(fields, {"", "", "B1", " "}), "Cycle");
  EXPECT_EQ(MissingPrompt(fields, {"", "7", "B1", ""}), "Rate");
  EXPECT_EQ(MissingPrompt(fields, {"", "7", "B1", "2.5"}), std::nullopt);
  for (const char key : std::string("0123456789.-\b")) EXPECT_TRUE(IsNumberPromptKey(key)) << key;
  for (const char key : std::string("aZ +,e")) EXPECT_FALSE(IsNumberPromptKey(key)) << key;
}

// The window's test turns a second run away; here a run that fails.
TEST(MainWindow, ARunThatFailsLetsTheNextOneIn) {
  RunGuard guard;
  EXPECT_THROW(guard.Run([] { throw std::runtime_error("failed"); }), std::runtime_error);
  EXPECT_FALSE(guard.Busy());
  EXPECT_TRUE(guard.Run([] {}));
}

TEST(MainWindow, SizesAndTheBarFollowTheButtons) {
  EXPECT_EQ(MainLeastSize(206, 332, 36).width, 412);
  EXPECT_EQ(MainLeastSize(206, 332, 36).height, 386);
  EXPECT_EQ(LogBoxSize({800, 500}, 206, 10).width, 584);
  EXPECT_EQ(LogBoxSize({800, 500}, 206, 10).height, 480);
  EXPECT_EQ(ProgressFillWidth(148, 255, 0), 10);
  EXPECT_EQ(ProgressFillWidth(148, 255, 255), 158);
  EXPECT_EQ(ProgressFillWidth(148, 300, 100), 59);
  EXPECT_EQ(ProgressFillWidth(148, 0, 0), 10);
}

TEST(MainWindow, ALoadTakesTheOnlyDistributionOfTheFolderWithoutAsking) {
  TempDir dir;
  EXPECT_EQ(SoleDistribution(dir.path()), std::nullopt);
  std::ofstream(dir.path() / "site.DST") << "DIST 1.0\r\n";
  std::ofstream(dir.path() / "notes.txt") << "x";
  EXPECT_EQ(SoleDistribution(dir.path()), dir.path() / "site.DST");
  std::ofstream(dir.path() / "other.dst") << "DIST 1.0\r\n";
  EXPECT_EQ(SoleDistribution(dir.path()), std::nullopt) << "two: the person chooses";
}

// The preview window's test presses End, Page Up, Home, Right and Left and
// drags within the page; here what it does not reach.
TEST(PreviewLogic, KeysAndDragsMoveThePageWithinTheBars) {
  ScrollBar h{0, 300, 10, 100};
  ScrollBar v{0, 500, 20, 400};
  const auto move = [&](int key) {
    EXPECT_TRUE(MoveByKey(key, h, v)) << key;
    return std::pair(h.value, v.value);
  };
  EXPECT_EQ(move(kKeyDown), std::pair(0, 20));
  EXPECT_EQ(move(kKeyPageDown), std::pair(0, 420));
  EXPECT_EQ(move(kKeyPageDown), std::pair(0, 500));  // not past the end
  EXPECT_EQ(move(kKeyUp), std::pair(0, 480));
  EXPECT_EQ(move(kKeyHome), std::pair(0, 0));
  EXPECT_EQ(move(kKeyPageUp), std::pair(0, 0));
  EXPECT_FALSE(MoveByKey(65, h, v));
  // Dragging the page up and left shows more of its right and its foot.
  MoveByDrag(-50, -700, h, v);
  EXPECT_EQ(std::pair(h.value, v.value), std::pair(50, 500));
  MoveByDrag(80, 30, h, v);
  EXPECT_EQ(std::pair(h.value, v.value), std::pair(0, 470));
}

TEST(PreviewLogic, ThePageOnScreenForEachZoomAndTheClosedWindowsAction) {
  // Landscape letter at 96 pixels an inch: 1056 by 816 at its printed size.
  EXPECT_EQ(PageOnScreen(PreviewZoom::ActualSize, 11, 8.5, {400, 300}, 96).width, 1056);
  const Size wide = PageOnScreen(PreviewZoom::FitWidth, 11, 8.5, {1100, 500}, 96);
  EXPECT_EQ(std::pair(wide.width, wide.height), std::pair(1100, 850));
  const Size whole = PageOnScreen(PreviewZoom::WholePage, 11, 8.5, {1100, 425}, 96);
  EXPECT_EQ(std::pair(whole.width, whole.height), std::pair(550, 425));
  // A frame too small for anything still shows a page an inch across.
  EXPECT_EQ(PageOnScreen(PreviewZoom::WholePage, 11, 8.5, {0, 0}, 96).width, 96);
  EXPECT_EQ(PreviewAction(""), "CLOSE");
  EXPECT_EQ(PreviewAction("NEXT"), "NEXT");
}

}  // namespace
}  // namespace hifx::test
