#include <gtest/gtest.h>

#include "exchange/RouteLineParser.h"
#include "support/RouteSite.h"

namespace hifx::test {
namespace {

int32_t RecTypeOf(const KeyedCollection<Value>& r) { return r.Item("RecType").ToInt32(); }

int CountOf(const std::vector<KeyedCollection<Value>>& records, int32_t recType) {
  int n = 0;
  for (const auto& r : records) n += RecTypeOf(r) == recType;
  return n;
}

TEST(RouteDriver, RefusesBadSettingsInItsOwnWords) {
  struct Case {
    std::function<void(RouteSite&)> setup;
    std::string line;
  };
  const std::vector<Case> cases = {
      {[](RouteSite& s) { s.Exchange().RouteSource = "  "; }, "Error: Route Source not specified"},
      {[](RouteSite& s) { s.Exchange().RouteSource = (s.dir / "none.txt").string(); },
       "Error: Route Source does not exist"},
      {[](RouteSite& s) { s.Exchange().RouteDestination = ""; }, "Error: Route Destination not specified"},
      {[](RouteSite& s) { s.Exchange().RouteMap = ""; }, "Error: Route Conversion Map not specified"},
      {[](RouteSite& s) { s.Exchange().RouteMap = "Missing"; }, "Error: Could not load Route Conversion Map"},
      {[](RouteSite& s) { s.Map({{"RouteNbr", "1,2,,,0"}}); },
       "Error: Mapping Errors found:\r\n\tMapping of Sequence is required\r\n"},
      {[](RouteSite& s) { s.shell.promptCancel = true; s.Map([] { auto m = FixedLayout(); m["User1"] = "P"; return m; }()); },
       "Error: Prompted entry of runtime variables cancelled"},
  };
  for (const Case& c : cases) {
    RouteSite site;
    site.Fixed({FixedLine("1", 1, 100, 'W', 'R', "1 MAIN", "DOE")});
    c.setup(site);
    EXPECT_FALSE(site.Exchange().ConvertRoute());
    ASSERT_FALSE(site.shell.log.empty());
    EXPECT_EQ(site.shell.log.back().substr(0, c.line.size()), c.line);
    EXPECT_FALSE(std::filesystem::exists(site.dir / "route.pdb")) << c.line;
  }
}

TEST(RouteDriver, AnExistingDestinationIsOverwrittenOnlyOnYes) {
  RouteSite site;
  site.Fixed({FixedLine("1", 1, 100, 'W', 'R', "1 MAIN", "DOE")});
  const std::string destination = (site.dir / "route.pdb").string();
  WriteBytes(destination, "old");
  site.shell.answers = {MsgAnswer::No};
  EXPECT_FALSE(site.Exchange().ConvertRoute());
  EXPECT_EQ(site.shell.questions, (std::vector<Question>{{destination + " already exists.  Overwrite?",
                                                          "Route Destination already exists", MsgButtons::YesNo}}));
  EXPECT_EQ(site.shell.log.back(), "Error: Route Destination already exists");
  EXPECT_EQ(ReadBytes(destination), "old");

  site.shell.answers = {MsgAnswer::Yes};
  site.shell.log.clear();
  EXPECT_TRUE(site.Exchange().ConvertRoute());
  EXPECT_EQ(site.shell.log[2], "Notice: File " + destination + " overwritten on request");
  EXPECT_EQ(site.shell.Tail(3),
            (std::vector<std::string>{"1 meters written to Route HIF File", "Route Conversion Finished", ""}));
}

TEST(RouteDriver, ALogOfAGoodRunAndItsFile) {
  RouteSite site;
  site.Fixed({FixedLine("7", 10, 1012345, 'W', 'R', "12 MAIN ST", "DOE JANE"),
              FixedLine("8", 20, 1012346, '4', 'm', "1 OAK AVE", "ROE RICK"),
              FixedLine("7", 30, 1012347, 'B', '9', "14 MAIN ST", "POE PAT")});
  EXPECT_TRUE(site.Exchange().ConvertRoute());
  const std::string source = site.Exchange().RouteSource;
  EXPECT_EQ(site.shell.log,
            (std::vector<std::string>{"Reading from " + source, "Writing to " + site.Exchange().RouteDestination,
                                      "Using Map: Route", "Route Conversion Starting 13:05 2/29/2024",
                                      "3 meters written to Route HIF File", "Route Conversion Finished", ""}));
  const auto records = site.Records();
  ASSERT_EQ(records.size(), 1u + 2 + 3 + 1);  // header, routes, meters, alerts
  // Routes in order of first appearance; a route met again keeps its index.
  // MeterType: a letter as its code, a digit as its number; ReadType m is 2,
  // 9 stays 9.
  // clang-format off
  for (const auto& [at, field, value] : std::vector<std::tuple<size_t, const char*, Value>>{
           {1, "Initials", Value("7")}, {1, "PrvReading", Value::Long(2)}, {2, "ResponseText", Value("8")},
           {5, "RouteNbr", Value::Long(1)}, {3, "MeterType", Value::Integer('W')}, {4, "MeterType", Value::Integer(4)},
           {5, "MeterType", Value::Integer(66)}, {3, "ReadType", Value::Integer(1)}, {4, "ReadType", Value::Integer(2)},
           {5, "ReadType", Value::Integer(9)}, {4, "ServiceAddress", Value("1 OAK AVE")}}) {
    EXPECT_EQ(records[at].Item(field), value) << "record " << at << " " << field;
  }
  // clang-format on
  EXPECT_EQ(site.Exchange().RouteNames, (std::vector<std::string>{"", "7", "8"}));
}

TEST(RouteDriver, IndexControlDecidesTheIndexRecords) {
  for (const auto& [control, answer, expected] :
       {std::tuple{0, MsgAnswer::Yes, 0}, std::tuple{1, MsgAnswer::No, 3}, std::tuple{2, MsgAnswer::Yes, 3},
        std::tuple{2, MsgAnswer::No, 0}}) {
    RouteSite site;
    site.Fixed({FixedLine("1", 1, 11, 'W', 'R', "1 MAIN", "DOE JANE")});
    site.Exchange().Advanced().IndexControl(static_cast<int16_t>(control));
    site.Exchange().Advanced().AddLogin("joe", "pw", "S");  // not written: security is off
    site.shell.answers = {answer};
    site.shell.promptValues = {};
    ASSERT_TRUE(site.Exchange().ConvertRoute());
    const auto records = site.Records();
    // Name, address and tag; no serial or account is mapped, so those two
    // indexes have no record.
    EXPECT_EQ(CountOf(records, kRecIndex), expected) << control;
    EXPECT_EQ(CountOf(records, kRecLogins), 0);
    EXPECT_EQ(CountOf(records, kRecAlerts), 1);
    const std::vector<Question> asked = {
        {"Create indexes?  \n(Takes longer to create and load, but speeds lookups in the field.)", "Index Control",
         MsgButtons::YesNo}};
    EXPECT_EQ(site.shell.questions, control == 2 ? asked : std::vector<Question>{});
  }
}

TEST(RouteDriver, CodeListsFollowTheMeters) {
  RouteSite site;
  site.Fixed({FixedLine("1", 1, 11, 'W', 'R', "1 MAIN", "DOE")});
  clsAdvanced& advanced = site.Exchange().Advanced();
  advanced.UseLoginSecurity(true);
  advanced.AddLogin("joe", "pw", "S");
  advanced.AddLogin("old", "x", "");
  advanced.DeleteLogin("old");
  advanced.AddSkip("DOG", "Dog in yard");
  advanced.AddChangeout("MS", "58", "5/8 inch");
  advanced.AlertRollover(1);
  advanced.AlertTamper(2);
  ASSERT_TRUE(site.Exchange().ConvertRoute());
  const auto raw = site.RawRecords();
  ASSERT_EQ(raw.size(), 7u);
  EXPECT_EQ(raw[3], Hex("0004 0000 0001 0001") + std::string("joe\0pw\0\0S\0", 10) + Hex("FFFF"));
  EXPECT_EQ(raw[4], Hex("0005 0000 0000 0001") + std::string("DOG\0Dog in yard\0\0\0", 18) + Hex("FFFF"));
  EXPECT_EQ(raw[5], Hex("0005 0004 0000 0001") + std::string("58\0\0005/8 inch\0\0\0", 16) + Hex("FFFF"));
  // RANGE and its NUL end at 14; "0" and its NUL add 2; the empty text a NUL
  // and a pad.
  EXPECT_EQ(raw[6], Hex("0007 0000 0001 0003") + std::string("RANGE\0" "0\0" "\0\0", 10) +
                        std::string("ROLLOVER\0\0" "1\0" "\0\0", 14) + std::string("TAMPER\0\0" "2\0" "\0\0", 12) +
                        Hex("FFFF"));
}

TEST(RouteValidation, FiftyMessagesThenTheLimit) {
  for (const int lines : {50, 51}) {
    RouteSite site;
    site.Map(FixedLayout());
    std::vector<std::string> source;
    for (int i = 0; i < lines; ++i) source.push_back(FixedLine("1", 0, 100 + i, 'W', 'R', "1 MAIN", "DOE"));
    site.Source(source);
    const bool made = site.Exchange().ConvertRoute();
    EXPECT_EQ(made, lines == 50);
    const auto& log = site.shell.log;
    EXPECT_EQ(std::count_if(log.begin(), log.end(),
                            [](const std::string& l) { return l.find(" zero in Line ") != std::string::npos; }),
              50);
    EXPECT_EQ(log[4], "Sequence zero in Line 1");
    if (lines == 50) {
      EXPECT_EQ(site.shell.Tail(3), (std::vector<std::string>{"50 meters written to Route HIF File",
                                                              "Route Conversion Finished with Warnings", ""}));
    } else {
      EXPECT_EQ(site.shell.Tail(5), (std::vector<std::string>{"Remaining validation messages suppressed",
                                                              "Fatal Error limit reached", "Route HIF File NOT created",
                                                              "Route Conversion Finished with Warnings", ""}));
      // What was written before the stop stays on the disk.
      EXPECT_EQ(CountOf(site.Records(), kRecMeter), 50);
    }
  }
}

TEST(RouteValidation, ADuplicateTagStopsAtOnceAndUntaggedMetersAreNotChecked) {
  RouteSite site;
  site.Fixed({FixedLine("1", 1, 0, 'W', 'M', "1 MAIN", "A"), FixedLine("1", 2, 0, 'W', 'P', "2 MAIN", "B"),
              FixedLine("1", 3, 0, 'W', 'S', "3 MAIN", "C"), FixedLine("1", 4, 500, 'W', 'R', "4 MAIN", "D"),
              FixedLine("1", 5, 500, 'W', 'R', "5 MAIN", "E")});
  EXPECT_FALSE(site.Exchange().ConvertRoute());
  EXPECT_EQ(site.Exchange().UntaggedMeters, 3);
  EXPECT_EQ(site.shell.Tail(5),
            (std::vector<std::string>{"Meter Tag Number of 500 is duplicate in Line 5", "   Info: 5 MAIN E",
                                      "Route HIF File NOT created", "Route Conversion Finished", ""}));
  EXPECT_EQ(CountOf(site.Records(), kRecMeter), 4);
}

TEST(RouteValidation, LimitsAndRequiredFields) {
  RouteSite site;
  auto map = FixedLayout();
  map["RouteNbr"] = "1,2,,,0";
  site.Map(map);
  site.Source({FixedLine("", 1, 16777216, 'W', 'R', "", "A")});
  EXPECT_TRUE(site.Exchange().ConvertRoute());
  EXPECT_EQ(std::vector<std::string>(site.shell.log.begin() + 4, site.shell.log.begin() + 7),
            (std::vector<std::string>{"RouteNbr empty in Line 1",
                                      "Value of MeterTagNbr(16777216) exceeds maximum permitted value in Line 1",
                                      "ServiceAddress empty in Line 1"}));
}

TEST(FlatInput, DelimitedQuotesTildesAndShortLines) {
  RouteSite site;
  site.Map({{"RouteNbr", "1,0,,,0"}, {"Sequence", "2,0,,,0"}, {"MeterTagNbr", "3,0,,,0"}, {"MeterType", "C,W"},
            {"UtilityCode", "C,1"}, {"ServiceAddress", "4,0,,,0"}, {"BillingName", "5,0,,,0"},
            {"User1", "6,0,,,0"}, {"User2", "7,0,,,0"}},
           2, "Route", "MAPDELIMITER=,\r\nMAPQUOTE=\"\r\n");
  site.Source({"1,1,11,\"12 MAIN, APT 2\",\"SAY \"\"HI\"\"\",a~b,x",
               "1,2,12,OAK"});  // short: the last piece repeats into the fields beyond
  ASSERT_TRUE(site.Exchange().ConvertRoute()) << site.shell.log.back();
  const auto r = site.Records();
  // Every ~ becomes the delimiter; on the short line User1 and User2 repeat
  // the field before them, MeterSerialNbr, unmapped.
  EXPECT_EQ(std::tuple(r[2].Item("ServiceAddress"), r[2].Item("BillingName"), r[2].Item("User1"), r[3].Item("BillingName"),
                       r[3].Item("User2")),
            std::tuple(Value("12 MAIN, APT 2"), Value("SAY \"HI\""), Value("a,b"), Value("OAK"), Value("")));
}

TEST(FlatInput, AutonumbersRepeatInBothPasses) {
  RouteSite site;
  site.Map(NumberedLayout("User2", "K1"));
  site.shell.promptValues = {"ASKED"};
  site.Source({FixedLine("1", 0, 11, 'W', 'R', "A", "B"), FixedLine("1", 0, 12, 'W', 'R', "A", "B")});
  ASSERT_TRUE(site.Exchange().ConvertRoute());
  const auto r = site.Records();
  EXPECT_EQ(std::tuple(r[2].Item("Sequence"), r[3].Item("Sequence"), r[3].Item("User1"), r[3].Item("User2")),
            std::tuple(Value::Long(1), Value::Long(2), Value("ASKED"), Value("K1")));
  ASSERT_EQ(site.shell.promptFields.size(), 1u);
  EXPECT_EQ(site.shell.promptFields[0][0].name, "User1");
}

// A first pass keeps only the route and walks only the fields that can fail
// or count, yet agrees with the whole line: the same route, read type and
// autonumbers, and a failure on the same lines.
TEST(FlatInput, AFirstPassAgreesWithTheWholeLine) {
  RouteSite site;
  site.Map(NumberedLayout("Lat", "123456"));
  clsExchMap map(site.dir.path());
  ASSERT_TRUE(map.LoadMap("Route.hcm", kUseRoute));
  const clsPrompts prompts;
  for (const std::string& line : {FixedLine("7", 0, 11, 'W', 'm', "A", "B"),
                                  FixedLine("8", 0, 12, 'W', 'R', "A", "B", 99999), std::string("9")}) {
    std::vector<std::tuple<std::string, std::string, int16_t, bool>> passes;
    for (const bool onlyRoute : {true, false}) {
      RouteLineParser parser(map, prompts);
      std::string route;
      bool failed = false;
      try {
        route = TextOf(parser.Parse(line, onlyRoute)[MeterField::RouteNbr]);
      } catch (const Failure&) {
        failed = true;
      }
      passes.emplace_back(route, parser.ReadType(), parser.AutoNumber(), failed);
    }
    EXPECT_EQ(passes[0], passes[1]) << line;
  }
}

TEST(RouteDriver, AFailureInsideIsShownAndTheClosingLineFollows) {
  RouteSite site;
  site.Fixed({FixedLine("1", 1, 11, 'W', 'R', "A", "B", 5), FixedLine("1", 2, 12, 'W', 'R', "A", "B", 99999)});
  EXPECT_FALSE(site.Exchange().ConvertRoute());
  EXPECT_EQ(site.shell.questions, (std::vector<Question>{{"Overflow", "Error", MsgButtons::OK}}));
  EXPECT_EQ(site.shell.Tail(2), (std::vector<std::string>{"Route Conversion Finished", ""}));
}

TEST(RouteDriver, ASourceOfNoLinesLeavesAnUnusableFile) {
  RouteSite site;
  site.Fixed({});
  EXPECT_FALSE(site.Exchange().ConvertRoute());
  EXPECT_EQ(site.shell.log.back(), "The RouteHIF contains no meter records. The RouteHIF file is unusable.");
  EXPECT_TRUE(std::filesystem::exists(site.dir / "route.pdb"));
}

TEST(RouteDriver, AddRouteFindsRoutesExactly) {
  RouteSite site;
  clsExchange& e = site.Exchange();
  e.ClearRoute();
  EXPECT_EQ((std::vector<int>{e.AddRoute("A"), e.AddRoute("B"), e.AddRoute("A"), e.AddRoute("a")}),
            (std::vector<int>{1, 2, 1, 3}));
  EXPECT_EQ(e.RouteNames.size(), 4u);
}

TEST(ReRead, AllMetersGoIntoOneRoute) {
  RouteSite site;
  auto map = FixedLayout();
  map["RouteNbr"] = "C,9";
  site.Map(map, 1, "Again");
  site.Exchange().ReReadSource = (site.dir / "route.txt").string();
  site.Exchange().ReReadDestination = (site.dir / "reread.pdb").string();
  site.Exchange().ReReadMap = "Again";
  site.Source({FixedLine("1", 1, 11, 'W', 'R', "1 MAIN", "A"), FixedLine("2", 2, 12, 'W', 'M', "2 MAIN", "B")});
  ASSERT_TRUE(site.Exchange().ConvertReRead());
  EXPECT_EQ(site.shell.Tail(3),
            (std::vector<std::string>{"1 meters written to ReRead HIF File", "ReRead Conversion Finished", ""}));
  const auto r = site.Records("reread.pdb");
  ASSERT_EQ(r.size(), 4u);  // header, the REREAD route, two meters; no code records
  // The parsed ReadType is already a number, so the letter M counts as 0.
  EXPECT_EQ(std::tuple(r[1].Item("Initials"), r[3].Item("RouteNbr"), r[3].Item("ReadType")),
            std::tuple(Value("REREAD"), Value::Long(1), Value::Integer(0)));
  EXPECT_EQ(site.Exchange().UntaggedMeters, 1);

  site.Source({});
  site.shell.answers = {MsgAnswer::Yes};
  EXPECT_FALSE(site.Exchange().ConvertReRead());
  EXPECT_EQ(site.shell.log.back(), "The ReReadHIF contains no meter records. The ReReadHIF file is unusable.");
  EXPECT_EQ(site.Records("reread.pdb").size(), 2u);
}

TEST(IndexWords, WordsOfNamesAndAddresses) {
  RouteSite site;
  clsExchange& e = site.Exchange();
  EXPECT_EQ(e.IndexWords("O'BRIEN, J", 0), (std::vector<std::string>{"BRIEN"}));
  EXPECT_EQ(e.IndexWords("1st 2nd 3RD 4TH 25 main-st", 1),
            (std::vector<std::string>{"1ST", "2ND", "3RD", "MAIN"}));  // ST is an address token
  EXPECT_EQ(e.IndexWords("SMITH AND SMITH CO", 0), (std::vector<std::string>{"SMITH", "SMITH"}));
  EXPECT_EQ(e.IndexWords("  ", 1), std::vector<std::string>{});
  EXPECT_TRUE(e.IsIndexToken(1, "blvd"));
  EXPECT_FALSE(e.IsIndexToken(2, "BLVD"));
}

}  // namespace
}  // namespace hifx::test
