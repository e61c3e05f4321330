#include <gtest/gtest.h>

#include <functional>

#include "base/Failure.h"
#include "maps/clsExchMap.h"
#include "support/FailureNumber.h"
#include "support/TempDir.h"

namespace hifx::test {
namespace {

using Change = std::function<void(clsExchMap&)>;

// The fields' names joined by ",", all or only the required ones.
std::string Names(const clsExchMap& map, bool requiredOnly = false) {
  std::string names;
  for (int32_t i = 1; i <= map.FieldCount(); ++i) {
    if (requiredOnly && !map.Required(i)) continue;
    names += (names.empty() ? "" : ",") + map.FieldName(i);
  }
  return names;
}

// ---- catalogues and properties -------------------------------------------

struct CatalogueCase {
  const char* label;
  int32_t use;
  int32_t terminator;
  const char* names;
  const char* required;
};
void PrintTo(const CatalogueCase& c, std::ostream* os) { *os << c.label; }

class CatalogueTest : public testing::TestWithParam<CatalogueCase> {};

TEST_P(CatalogueTest, NewMapBuildsTheUsesFieldsInOrder) {
  const CatalogueCase& c = GetParam();
  clsExchMap map(".");
  map.NewMap("Billing", c.use);
  EXPECT_EQ(Names(map), c.names);
  EXPECT_EQ(Names(map, true), c.required);
  EXPECT_EQ(map.MapTerminator(), c.terminator);
  for (int32_t i = 1; i <= map.FieldCount(); ++i) EXPECT_EQ(map.MapOption(i), kOptionDoNotMap);
}

constexpr const char* kRouteNames =
    "RouteNbr,Sequence,MeterTagNbr,MeterType,Digits,Decimals,PrvReading,MaxReading,MinReading,"
    "ReadType,LstReadingDate,UtilityCode,Lat,Lng,ScaleFactor,InitReading,InitPulseCount,"
    "InitTamperCount,Message,ServiceAddress,BillingName,ServiceUniqueID,MeterSerialNbr,User1,"
    "User2,User3,User4,User5";
constexpr const char* kRouteRequired =
    "RouteNbr,Sequence,MeterTagNbr,MeterType,UtilityCode,ServiceAddress";

INSTANTIATE_TEST_SUITE_P(
    Uses, CatalogueTest,
    testing::Values(
        CatalogueCase{"Route", kUseRoute, 0, kRouteNames, kRouteRequired},
        CatalogueCase{"Reading", kUseReading, 3,
                      "RouteNbr,Sequence,MeterTagNbr,MeterType,Digits,Decimals,PrvReading,"
                      "MaxReading,MinReading,CurReading,ReadingDate,ReadingTime,Status,ReadType,"
                      "ResponseCode,LstReadingDate,TamperCount,UtilityCode,Signal,Lat,Lng,"
                      "ScaleFactor,InitReading,InitPulseCount,InitTamperCount,Initials,"
                      "ResponseText,Message,ServiceAddress,BillingName,ServiceUniqueID,"
                      "MeterSerialNbr,ReceiverData,User1,User2,User3,User4,User5", ""},
        CatalogueCase{"Orphan", kUseOrphan, 3,
                      "MeterTagNbr,CurReading,ReadingDate,ReadingTime,TamperCount,UtilityCode,"
                      "PrvReading,MaxReading,MinReading,LstReadingDate", ""},
        CatalogueCase{"Unknown", 7, 0, "", ""}),
    [](const auto& info) { return std::string(info.param.label); });

TEST(Catalogue, LimitsPromptsAndWhatNewMapLeaves) {
  clsExchMap map(".");
  map.NewMap("o.hom", kUseOrphan);
  map.SetMapDelimiter(",");
  map.SetMapOptions(1, "Y");
  map.SetMapType(2);
  map.NewMap("r.hcm", kUseRoute);
  EXPECT_EQ(map.MapDelimiter() + "|" + map.MapOptions(0) + "|" + std::to_string(map.MapType()),
            ",|1:Y|0");
  EXPECT_EQ(map.MapTerminator(), 3) << "a route map leaves the terminator as it was";
  EXPECT_EQ(map.MaxValue("MeterTagNbr") + map.MaxValue("UtilityCode"), 16777215.0 + 255.0);
  EXPECT_EQ(map.FieldName("routenbr", true), "RouteNbr(Required)");
  EXPECT_EQ(map.Prompt("ScaleFactor", true), "Pulse Scaling (434)");
  EXPECT_EQ(map.Prompt("UtilityCode", true), "UtilityCode(Required)");
  EXPECT_EQ(map.FieldName(29) + map.Prompt("Nope"), "");
}

TEST(Properties, MappingsIndexesDelimiterAndNumberedOptions) {
  clsExchMap map(".");
  map.NewMap("r.hcm", kUseRoute);
  EXPECT_TRUE(map.SetMapping("metertype", "C", "W1", "", "", ""));
  EXPECT_FALSE(map.SetMapping("meternbr", "N", "", "", "", ""));
  EXPECT_EQ(map.MapConstant(4), "W1");
  EXPECT_EQ(FailureNumber([&] { map.SetMapOption("Nope", 2); }), fail::kSubscript);
  EXPECT_EQ(FailureNumber([&] { (void)map.DataType(0); }), fail::kSubscript);
  map.SetDataPosition("SEQUENCE", 7);
  EXPECT_EQ(map.DataPosition(2), 7);
  EXPECT_EQ(map.FindItem(28), 28);
  EXPECT_EQ(map.FindItem(29) + map.FindItem(0) + map.FindItem("Seq"), 0);
  map.AddField(kTypeText, "Extra", false, 0, 0, "");
  map.AddField(kTypeNumber, "EXTRA", true, 0, 0, "");
  EXPECT_EQ(map.FindItem("extra"), 29) << "the first of two like names";

  map.SetMapDelimiter("<TAB>");
  EXPECT_EQ(map.MapDelimiterChar(), "<TAB>") << "only <tab> is a tab";

  map.SetMapOptions(3, "x");
  map.SetMapOptions(1, " ");
  EXPECT_EQ(map.MapOptions(0), "3:x") << "blank slots are left out";
  EXPECT_EQ(map.MapOptions(4) + map.MapOptions(-1), "");
  clsExchMap parsed(".");
  parsed.SetMapOptions(0, "2:B;0:Z;x:Q;1:A:extra;;5;-1:M");
  parsed.SetMapOptions(0, "2:C");
  EXPECT_EQ(parsed.MapOptions(0), "1:A;2:C");
  EXPECT_EQ(FailureNumber([&] { parsed.SetMapOptions(kMaxMapOptions + 1, "x"); }), fail::kSubscript);
}

// ---- files ---------------------------------------------------------------

// An orphan map with a field of every mapping option.
void FillOrphanMap(clsExchMap& map) {
  map.NewMap("Orphans.hom", kUseOrphan);
  map.SetMapType(kMapFixed);
  map.SetMapFilter(2);
  map.SetMapDelimiter("<tab>");
  map.SetMapQuote("<none>");
  map.SetMapOptions(1, "Y");
  map.SetMapLength(80);
  map.SetMapping("CurReading", "13", "8", "R", "Z", "0");
  map.SetMapping("ReadingDate", "21", "8", "L", "B", "24");
  map.SetMapping("TamperCount", "C", "7", "", "", "");
  map.SetMapping("UtilityCode", "P", "", "", "", "");
  map.SetMapping("PrvReading", "A", "", "", "", "");
  // Through the properties: a source field in an output map, and no align or pad at all.
  map.SetMapOption("MeterTagNbr", kOptionSource);
  map.SetDataPosition("MeterTagNbr", 1);
  map.SetDataWidth("MeterTagNbr", 4);
  map.SetMapOption("ReadingTime", kOptionDestination);
  map.SetDataPosition("ReadingTime", 29);
  map.SetDataWidth("ReadingTime", 4);
  map.SetMapFormat("ReadingTime", 40);
  map.SetMapOption("MinReading", 9);
}

TEST(MapFile, SaveWritesEveryOptionsLineAndReloadsInTheUsesTerms) {
  TempDir dir;
  clsExchMap saved(dir.path());
  FillOrphanMap(saved);
  ASSERT_TRUE(saved.SaveMap());
  EXPECT_EQ(ReadBytes(dir / "Orphans.hom"),
            "HIF=1.1\r\nMAPNAME=Orphans.hom\r\nMAPTYPE=1\r\nMAPFILTER=2\r\n"
            "MAPDELIMITER=<tab>\r\nMAPQUOTE=<none>\r\nMAPOPTIONS=1:Y\r\n"
            "MAPTERMINATOR= 3 \r\nMAPLENGTH=80\r\n"
            "MeterTagNbr=1,4,,,0\r\nCurReading=13,8,R,Z,0\r\nReadingDate=21,8,L,B,24\r\n"
            "ReadingTime=29,4,R,Z,40\r\nTamperCount=C,7\r\nUtilityCode=P\r\nPrvReading=A\r\n"
            "MaxReading=N\r\nLstReadingDate=N\r\n");
  EXPECT_EQ(FilesIn(dir.path()), 1u) << "no temporary file is left behind";

  clsExchMap map(dir.path());
  ASSERT_TRUE(map.LoadMap("Orphans.hom", kUseOrphan));
  EXPECT_EQ(map.MapQuote(), "") << "<none> loads as no quote";
  ASSERT_TRUE(map.SaveMap());
  const std::string again = ReadBytes(dir / "Orphans.hom");
  EXPECT_NE(again.find("MAPQUOTE=\r\nMAPOPTIONS=1:Y\r\nMAPTERMINATOR= 3 \r\nMAPLENGTH=80\r\n"),
            std::string::npos);
  // A source field of an output map reads back as a destination, right aligned, blank padded.
  EXPECT_NE(again.find("MeterTagNbr=1,4,R,B,0\r\nCurReading=13,8,R,Z,0\r\n"), std::string::npos);
  EXPECT_NE(again.find("TamperCount=C,7\r\n"), std::string::npos);
  EXPECT_NE(again.find("MinReading=N\r\n"), std::string::npos);
}

TEST(MapFile, FailuresOfSaveLoadAndDelete) {
  TempDir dir;
  clsExchMap map(dir.path());
  map.NewMap("", kUseRoute);
  EXPECT_FALSE(map.SaveMap());
  map.NewMap("x.map", 5);
  EXPECT_EQ(FailureNumber([&] { map.SaveMap(); }), fail::kBadFileName);
  EXPECT_FALSE(map.LoadMap("Missing.hcm", kUseRoute));
  EXPECT_EQ(map.FieldCount(), 28) << "the catalogue is built before the file is looked for";
  WriteBytes(dir / "Huge.hcm", std::string(kMaxMapFileSize + 1, '#'));
  EXPECT_FALSE(map.LoadMap("Huge.hcm", kUseRoute));

  // A folder in the map's place is neither read nor replaced, and no temporary file stays.
  std::filesystem::create_directories(dir / "Busy.hcm" / "inside");
  EXPECT_FALSE(map.LoadMap("Busy.hcm", kUseRoute));
  EXPECT_NE(FailureNumber([&] { map.SaveMap(); }), 0);
  EXPECT_EQ(FailureNumber([&] { map.DeleteMap(); }), fail::kFileNotFound);
  EXPECT_EQ(FilesIn(dir.path()), 2u);

  map.NewMap("Gone.hcm", kUseRoute);
  ASSERT_TRUE(map.SaveMap());
  map.DeleteMap();
  EXPECT_FALSE(std::filesystem::exists(dir / "Gone.hcm"));
}

// A map file's text and what the loaded map then says.
struct LoadCase {
  const char* label;
  int32_t use;
  const char* text;
  const char* field;  // nullptr: the header
  const char* expected;
};
void PrintTo(const LoadCase& c, std::ostream* os) { *os << c.label; }

std::string Describe(const clsExchMap& m, const char* field) {
  auto n = [](auto v) { return std::to_string(v) + "|"; };
  if (field == nullptr) {
    return n(m.MapType()) + n(m.MapFilter()) + n(m.MapLength()) + n(m.MapTerminator()) +
           m.MapDelimiter() + "|" + m.MapQuote() + "|" + m.MapOptions(0);
  }
  return n(m.MapOption(field)) + n(m.DataPosition(field)) + n(m.DataWidth(field)) +
         n(m.MapAlign(field)) + n(m.MapPad(field)) + n(m.MapFormat(field)) + m.MapConstant(field);
}

class LoadTest : public testing::TestWithParam<LoadCase> {};

TEST_P(LoadTest, Reads) {
  TempDir dir;
  WriteBytes(dir / "Test.map", GetParam().text);
  clsExchMap map(dir.path());
  ASSERT_TRUE(map.LoadMap("Test.map", GetParam().use));
  EXPECT_EQ(Describe(map, GetParam().field), GetParam().expected);
  EXPECT_EQ(map.MapName(), "Test.map");
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Lines, LoadTest, testing::Values(
    LoadCase{"AnyOrderLastWins", 1, "HIF=7.0\r\nMAPTYPE=2\r\nMAPLENGTH=9\r\nMAPTYPE=1\r\nMAPNAME=x.hcm\r\n", nullptr, "1|0|9|0|||"},
    LoadCase{"QuoteNoneAndTrimming", 1, "MAPQUOTE=<none>\r\n MAPDELIMITER = <tab> \r\n", nullptr, "0|0|0|0|<tab>||"},
    LoadCase{"HeaderKeysAreCaseSensitive", 1, "maptype=2\r\nMapLength=5\r\n", nullptr, "0|0|0|0|||"},
    LoadCase{"FieldNamesInAnyCaseConstantKept", 1, "routeNBR=C,X\r\nROUTENBR=3,2,,,14\r\n", "RouteNbr", "2|3|2|2|2|14|X"},
    LoadCase{"ConstantCutAtCommaAndEquals", 1, "MeterType=C,W=1,X\r\n", "MeterType", "3|0|0|0|0|0|W"},
    LoadCase{"PiecesAreNotTrimmed", 1, " MeterType = C, W 1 \r\n", "MeterType", "3|0|0|0|0|0| W 1"},
    LoadCase{"CommentsAndBlanks", 1, "MAPTYPE=3\r\n#MAPTYPE=2\r\n   \r\n #MAPTYPE=4\r\n", nullptr, "3|0|0|0|||"},
    LoadCase{"BareKeyHasAnEmptyValue", 1, "MAPTYPE=3\r\nMAPTYPE\r\nMAPLENGTH=7\r\nMAPLENGTH\r\n", nullptr, "0|0|7|0|||"},
    LoadCase{"UnreadableNumbersLeaveTheMember", 3,
             "MAPLENGTH=80\r\nMAPLENGTH=abc\r\nMAPLENGTH=40000\r\nMAPFILTER=2\r\nMAPFILTER=2x\r\n"
             "MAPTERMINATOR=1\r\nMAPTERMINATOR=99999999999\r\nMAPTYPE=2 wide\r\n", nullptr, "2|2|80|1|||"},
    LoadCase{"AnyLineEnd", 1, "MAPTYPE=2\rMAPLENGTH=5\nMAPFILTER=1\r\n\nMAPDELIMITER=,", nullptr, "2|1|5|0|,||"},
    LoadCase{"OverflowStopsTheLine", 3, "CurReading=3,99999,L,Z,5\r\n", "CurReading", "1|3|0|0|0|0|"},
    LoadCase{"OutputPlacement", 3, "CurReading=13,8,L,Z,24\r\n", "CurReading", "5|13|8|1|1|24|"},
    LoadCase{"PlacementWordsAreCaseSensitive", 3, "Status=2,1,l,z\r\n", "Status", "5|2|1|2|2|0|"},
    LoadCase{"OptionsStopAtABadSlot", 1, "MAPOPTIONS=1:Y;300:N;2:Z\r\n", nullptr, "0|0|0|0|||1:Y"},
    LoadCase{"OtherCataloguesFieldsDropped", 99, "RouteNbr=1,2\r\nMeterTagNbr=P\r\n", "MeterTagNbr", "4|0|0|0|0|0|"}),
    [](const auto& info) { return std::string(info.param.label); });
// clang-format on

// ---- validation ----------------------------------------------------------

Change Mapped(const char* name, int32_t option, int16_t position, int16_t width, int32_t format = 0,
              const char* constant = "") {
  return [=](clsExchMap& m) {
    m.SetMapOption(name, option);
    m.SetDataPosition(name, position);
    m.SetDataWidth(name, width);
    m.SetMapFormat(name, format);
    m.SetMapConstant(name, constant);
  };
}

struct CheckCase {
  const char* label;
  int32_t use;
  int32_t type;
  Change setup;
  MapIndex index;
  const char* message;  // empty when the field passes
};
void PrintTo(const CheckCase& c, std::ostream* os) { *os << c.label; }

class MappedOKTest : public testing::TestWithParam<CheckCase> {};

TEST_P(MappedOKTest, OneMessageAtMost) {
  const CheckCase& c = GetParam();
  clsExchMap map(".");
  map.NewMap("m", c.use);
  map.SetMapType(c.type);
  c.setup(map);
  std::string messages = "before\r\n";
  const std::string expected = *c.message ? std::string("\t") + c.message + "\r\n" : "";
  EXPECT_EQ(map.MappedOK(c.index, messages), expected.empty());
  EXPECT_EQ(messages, "before\r\n" + expected);
}

const Change kNothing = [](clsExchMap&) {};

// clang-format off
INSTANTIATE_TEST_SUITE_P(Rules, MappedOKTest, testing::Values(
    CheckCase{"NoSuchName", 1, 1, kNothing, MapIndex("Nope"), "Mapping of Nope not complete"},
    CheckCase{"NoSuchPosition", 1, 1, kNothing, MapIndex(29), "Mapping of 29 not complete"},
    CheckCase{"RequiredNotMapped", 1, 1, kNothing, MapIndex(1), "Mapping of RouteNbr is required"},
    CheckCase{"RequiredAsDestination", 1, 2, Mapped("RouteNbr", 5, 1, 1), MapIndex(1), "Mapping of RouteNbr is required"},
    CheckCase{"RequiredByPrompt", 1, 1, Mapped("RouteNbr", 4, 0, 0), MapIndex(1), ""},
    CheckCase{"ConstantMissing", 1, 1, Mapped("MeterType", 3, 0, 0), MapIndex(4), "Constant missing for MeterType"},
    CheckCase{"PositionBeforeWidth", 1, 1, Mapped("Digits", 2, 0, 0), MapIndex(5), "Position of Digits is required"},
    CheckCase{"WidthOfFixed", 3, 1, Mapped("Digits", 5, 3, 0), MapIndex(5), "Width of Digits is required"},
    CheckCase{"NoWidthWhenDelimited", 3, 2, Mapped("Digits", 5, 3, 0), MapIndex(5), ""},
    CheckCase{"WrittenDateNeedsFormat", 3, 2, Mapped("ReadingDate", 5, 3, 0), MapIndex("ReadingDate"), "Date/Time format missing for ReadingDate"},
    CheckCase{"WrittenTimeNeedsFormat", 99, 2, Mapped("ReadingTime", 5, 3, 0), MapIndex(4), "Date/Time format missing for ReadingTime"},
    CheckCase{"SourceDateNeedsNone", 1, 2, Mapped("LstReadingDate", 2, 3, 0), MapIndex(11), ""}),
    [](const auto& info) { return std::string(info.param.label); });
// clang-format on

TEST(ValidateMap, CollectsEveryFieldsMessageUnderOneHeading) {
  clsExchMap map(".");
  map.NewMap("r.hcm", kUseRoute);
  map.SetMapType(kMapFixed);
  for (const Change& set : {Mapped("RouteNbr", 2, 1, 4), Mapped("Sequence", 6, 0, 0),
                            Mapped("MeterTagNbr", 2, 5, 0), Mapped("MeterType", 3, 0, 0)}) {
    set(map);
  }
  std::string messages;
  EXPECT_FALSE(map.ValidateMap(messages));
  EXPECT_EQ(messages,
            "Mapping Errors found:\r\n\tWidth of MeterTagNbr is required\r\n"
            "\tConstant missing for MeterType\r\n\tMapping of UtilityCode is required\r\n"
            "\tMapping of ServiceAddress is required\r\n");
  for (const Change& set : {Mapped("MeterTagNbr", 2, 5, 8), Mapped("MeterType", 3, 0, 0, 0, "W"),
                            Mapped("UtilityCode", 4, 0, 0), Mapped("ServiceAddress", 2, 10, 30)}) {
    set(map);
  }
  messages = "untouched";
  EXPECT_TRUE(map.ValidateMap(messages));
  EXPECT_EQ(messages, "untouched");
}

}  // namespace
}  // namespace hifx::test
