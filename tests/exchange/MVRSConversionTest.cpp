// MVRS route files into HIF records, and reading HIFs into MVRS reading
// files. Lines are built and read back through the catalogues by field name.
#include <gtest/gtest.h>

#include <map>

#include "base/DateSerial.h"
#include "base/LineReader.h"
#include "exchange/ExchangeText.h"
#include "formats/mvrs/MVRSCatalogue.h"
#include "support/HifImage.h"
#include "support/RouteSite.h"

namespace hifx::test {
namespace {

using Fields = std::map<std::string, std::string>;

// One line of the given kind, its fields set by name.
std::string Line(const std::vector<RecordLayout>& catalogue, const std::string& kind, const Fields& fields) {
  for (const auto& type : BuildRecordTypes(catalogue, nullptr)) {
    if (type->IDText != kind) continue;
    type->SetValue("RecID", Value(kind));
    for (const auto& [name, text] : fields) type->SetValue(name, Value(text));
    return type->Buffer(0);
  }
  ADD_FAILURE() << "no kind " << kind;
  return {};
}
std::string Route(const std::string& kind, const Fields& fields = {}) {
  return Line(MVRSDownloadCatalogue(), kind, fields);
}

// The values of a reading file's line, by field name.
clsRecType Parsed(const std::string& line) {
  for (auto& type : BuildRecordTypes(MVRSUploadCatalogue(), nullptr)) {
    if (type->TestID(line)) {
      type->Parse(line);
      return std::move(*type);
    }
  }
  ADD_FAILURE() << "unknown line " << line;
  return clsRecType();
}

class MVRSSite : public RouteSite {
 public:
  explicit MVRSSite(bool radio = false) { Map({}, 3, "Route", radio ? "MAPOPTIONS=1:Y\r\n" : ""); }
  bool Convert(const std::vector<std::string>& lines) {
    Source(lines);
    return Exchange().ConvertRoute();
  }
  std::string Log() const {
    std::string log;
    for (const auto& line : shell.log) log += line + "\n";
    return log;
  }
};

std::string Text(const KeyedCollection<Value>& record, const char* name) { return TextOf(record.Item(name)); }

TEST(MVRSRoute, FoldsEachMeterWithTheLinesThatFollowIt) {
  MVRSSite site;
  const bool ok = site.Convert({
      Route("FHD"),
      Route("CHD", {{"NumberRoutes", "0"}, {"CycleDate", "11202026"}}),
      Route("RHD", {{"RouteNumber", "R1"}, {"Region", "NE"}, {"Zone", "01"}, {"Office", "05"},
                    {"NumberRemoteWandReads", "3"}, {"NumberCustomerRecords", "2"}, {"NumberMeterRecords", "3"}}),
      Route("RTS", {{"SurveyText1", "Lost: no meter yet"}}),
      Route("CUS", {{"Account", "A-1"}, {"Name", "SMITH"}, {"Address1", "1 MAIN"}, {"GroupCode", "R"},
                    {"ExtraIndicator", "Y"}, {"SegmentCode", "S1"}, {"UtilityID", "01"}, {"CustomerInfo", "GATE"}}),
      Route("CSX", {{"Name", "JONES"}, {"Address3", "ANNEX"}}),
      Route("MTR", {{"MeterNumber", "M1"}, {"MeterCategory", "G"}, {"MeterType", "4"}, {"ReadSequence", "40000"},
                    {"MeterLocation", "07"}, {"LocationExtraMeter", "Q"}, {"AdditionalMeterInfo", "CELLAR"}}),
      Route("RTS", {{"SurveyText1", "Yard"}, {"SurveyText2", "kept, not packed"}}),
      Route("MTS", {{"SpecialMessageText", "Dog"}}),
      Route("RDG", {{"NumberDials", "5"}, {"ReadMethod", "P"}, {"PreviousReading", "111"}}),
      Route("RDG", {{"NumberDials", "6"}, {"ReadMethod", "K"}, {"PreviousReading", "222"}, {"High1", "300"},
                    {"Low1", "200"}, {"NumberDecimals", "1"}, {"TextPrompt", "KWH"}, {"CompareCode", "5"}}),
      Route("RFF", {{"RFERTID", "00004711"}, {"GeographicArea", "12"}, {"RFFrequency", "952"}, {"Tamper", "3"}}),
      Route("WRR", {{"WandProgram", "WP01"}, {"DeviceID", "WAND1"}}),
      Route("CUS", {{"Account", "A-2"}}),  // no meter: no record
      Route("CUS", {{"Account", "A-3"}, {"Name", "LEE"}}),
      Route("MTR", {{"MeterNumber", "M2"}, {"MeterCategory", "X"}, {"ReadSequence", "5"}}),
      Route("ERH", {{"RouteNumber", "R9"}}),  // not a route of the table
      Route("MTR", {{"MeterNumber", "M3"}, {"MeterCategory", "W"}}),
      "ZZZ an unknown line ends the file here",
      Route("MTR", {{"MeterNumber", "M4"}}),
  });
  EXPECT_TRUE(ok) << site.Log();
  const auto records = site.Records();
  ASSERT_GE(records.size(), 2u);
  EXPECT_EQ(std::tuple(NumberOf(records[0].Item("RouteNbr")), NumberOf(records[0].Item("PrvReading")),
                       Text(records[0], "User1"), Text(records[0], "Initials")),
            std::tuple(1, 3, "2~3", "HIF loaded from " + (site.dir / "route.txt").string()));
  EXPECT_EQ(std::tuple(Text(records[1], "Initials"), NumberOf(records[1].Item("PrvReading")), Text(records[1], "User1")),
            std::tuple("R1      ", 3, "NE~01~05~11/20/2026~3"));

  const auto meters = site.Meters();
  ASSERT_EQ(meters.size(), 3u);  // M1, M2, M3; not M4
  // clang-format off
  const std::vector<std::pair<const char*, std::string>> m1 = {
      {"RouteNbr", "1"}, {"Sequence", "0"} /* 40000 doesn't fit */, {"MeterTagNbr", "4711"}, {"MeterType", "2"},
      {"Digits", "6"}, {"Decimals", "1"}, {"PrvReading", "222"}, {"MaxReading", "300"}, {"MinReading", "200"},
      {"ReadType", "2"}, {"TamperCount", "3"},
      {"ServiceAddress", "1 MAIN" + std::string(34, ' ') + "ANNEX"},
      {"BillingName", "SMITH" + std::string(15, ' ') + "JONES"},
      {"ServiceUniqueID", "A-1" + std::string(17, ' ')},
      {"User1", "0~A-1" + std::string(17, ' ') + "~R~Y~S1  ~~GATE" + std::string(16, ' ')},
      {"User2", " ~ ~ ~ ~ ~" + std::string(14, ' ') + "~4~7~0~0~0~Yard" + std::string(36, ' ') + "~Q~CELLAR" +
                    std::string(14, ' ') + "~40000"},
      {"User3", "KWH ~ ~5~0~K~0~0~0~1"},
      {"User4", "12~952         ~    ~~WAND1         ~WP01"},
      {"User5", "Dog" + std::string(97, ' ')}};
  // clang-format on
  for (const auto& [field, text] : m1) EXPECT_EQ(Text(meters[0], field), text) << field;

  // A meter with no reading line: zeros, and no read type at all.
  // "X" leaves the MeterType at its default.
  for (const char* field : {"Digits", "PrvReading", "ReadType", "MeterType"}) {
    EXPECT_EQ(NumberOf(meters[1].Item(field)), 0) << field;
  }
  EXPECT_EQ(NumberOf(meters[2].Item("RouteNbr")), 1);  // under the route before "ERH"
  EXPECT_EQ(site.Log().find("ZZZ"), std::string::npos);
}

TEST(MVRSRoute, RadioOptionTakesAnEightDigitMeterNumberAsTheTag) {
  for (const bool option : {true, false}) {
    MVRSSite site(option);
    ASSERT_TRUE(site.Convert({
        Route("CHD", {{"NumberRoutes", "1"}}),
        Route("RHD", {{"RouteNumber", "R1"}}),
        Route("CUS"),
        Route("MTR", {{"MeterNumber", "12345678"}}),
        Route("RDG", {{"ReadMethod", "K"}}),
        Route("MTR", {{"MeterNumber", "1234567"}}),
        Route("RDG", {{"ReadMethod", "K"}}),
        Route("MTR", {{"MeterNumber", "87654321"}}),
        Route("RFF", {{"RFERTID", "555"}}),
    }));
    // Tag and read type of each meter; a later transponder line wins.
    std::vector<std::pair<int32_t, int32_t>> got;
    for (const auto& m : site.Meters()) got.emplace_back(NumberOf(m.Item("MeterTagNbr")), NumberOf(m.Item("ReadType")));
    EXPECT_EQ(got, (std::vector<std::pair<int32_t, int32_t>>{{option ? 12345678 : 0, option ? 1 : 2}, {0, 2}, {555, 0}}));
  }
}

TEST(MVRSRoute, ADuplicateTransponderIsAProblemButEveryMeterIsWritten) {
  MVRSSite site;
  EXPECT_FALSE(site.Convert({
      Route("CHD", {{"NumberRoutes", "1"}}),
      Route("RHD", {{"RouteNumber", "R1"}}),
      Route("CUS", {{"Name", "SMITH"}, {"Address1", "1 MAIN"}}),
      Route("MTR"),
      Route("RFF", {{"RFERTID", "42"}}),
      Route("MTR"),
      Route("RFF", {{"RFERTID", "0042"}}),
  }));
  EXPECT_EQ(site.Meters().size(), 2u);
  const std::string log = site.Log();
  EXPECT_NE(log.find("Meter Tag Number of 42 is duplicate in Line 7\n   Info: SMITH" + std::string(15, ' ') +
                     " 1 MAIN"),
            std::string::npos)
      << log;
  EXPECT_NE(log.find("Problems encountered; Route file unusable\n"), std::string::npos);
}

// The lines are read on a second thread in batches: a line that can't be
// read stops the reading where it stands, after every meter before it, the
// one it interrupts included, and is shown once in each pass.
TEST(MVRSRoute, ALineThatCantBeReadEndsTheMetersWhereItStands) {
  MVRSSite site;
  std::vector<std::string> lines = {Route("CHD", {{"NumberRoutes", "1"}}), Route("RHD", {{"RouteNumber", "R1"}})};
  for (int i = 1; i <= 600; ++i) {
    lines.push_back(Route("CUS", {{"Account", "A" + std::to_string(i)}}));
    lines.push_back(Route("MTR", {{"MeterNumber", "M" + std::to_string(i)}}));
    lines.push_back(Route("RFF", {{"RFERTID", std::to_string(i)}}));
  }
  lines.push_back(std::string(LineReader::kMaxLine + 200000, 'X'));
  lines.push_back(Route("MTR", {{"MeterNumber", "AFTER"}}));
  site.Convert(lines);
  const auto meters = site.Meters();
  ASSERT_EQ(meters.size(), 600u);
  EXPECT_EQ(std::pair(Text(meters[0], "MeterSerialNbr"), Text(meters[599], "MeterSerialNbr")),
            std::pair(std::string("M1          "), std::string("M600        ")));
  EXPECT_EQ(meters[599].Item("MeterTagNbr"), Value::Long(600));
  ASSERT_EQ(site.shell.questions.size(), 2u);
  EXPECT_EQ(site.shell.questions[0].text.rfind("Error in Readnext: ", 0), 0u) << site.shell.questions[0].text;
  EXPECT_EQ(site.shell.questions[1].text, site.shell.questions[0].text);
}

TEST(MVRSRoute, ARouteWithoutACycleFailsInTheDriversFrame) {
  MVRSSite site;
  EXPECT_FALSE(site.Convert({Route("FHD"), Route("RHD", {{"RouteNumber", "R1"}}), Route("CUS"), Route("MTR")}));
  EXPECT_EQ(site.shell.questions, (std::vector<Question>{{"Subscript out of range", "Error", MsgButtons::OK}}));
  // Garbage from the first line: nothing read, nothing written.
  MVRSSite garbage;
  EXPECT_FALSE(garbage.Convert({std::string(5000, 'x'), Route("CHD")}));
  EXPECT_NE(garbage.Log().find("The RouteHIF contains no meter records."), std::string::npos);
}

// ---- Reading files

struct ReadMeter {
  int route = 1;
  int status = 1, readType = 2, reading = 0, decimals = 0, meterType = 1, response = 0;
  std::string serial = "M1";
  std::string user2 = "";
  int recType = 2;
  int readingDate = 20240305;
};

class MVRSReadingSite : public MVRSSite {
 public:
  MVRSReadingSite() {
    Exchange().ReadingSource = (dir / "reading.pdb").string();
    Exchange().ReadingDestination = (dir / "reading.dat").string();
    Exchange().ReadingMap = "Read";
    WriteBytes(dir / "Read.hrm", "HIF=1.1\r\nMAPNAME=Read.hrm\r\nMAPTYPE=3\r\n");
  }
  void Hif(const std::vector<ReadMeter>& meters, int routes = 2, int routeRecType = 1) {
    TestShell quiet;
    HifWriter w(quiet, dir / "reading.pdb", 3, kFilePDB, static_cast<int32_t>(meters.size()) + routes + 1);
    w.Add({{"RecType", 0}, {"RouteNbr", routes}, {"MeterType", 3}});
    for (int r = 1; r <= routes; ++r) {
      w.Add({{"RecType", routeRecType}, {"RouteNbr", r}, {"Initials", "ROUTE" + std::to_string(r)},
             {"User1", "NE~01~05~11/20/2026~3"}});
    }
    for (const ReadMeter& m : meters) {
      w.Add({{"RecType", m.recType},
             {"RouteNbr", m.route},
             {"Sequence", 7},
             {"MeterType", m.meterType},
             {"Digits", 6},
             {"Decimals", m.decimals},
             {"PrvReading", 500},
             {"CurReading", m.reading},
             {"ReadingDate", m.readingDate},
             {"ReadingTime", 83015},
             {"Status", m.status},
             {"ReadType", m.readType},
             {"ResponseCode", m.response},
             {"ServiceAddress", "1 MAIN"},
             {"BillingName", "SMITH"},
             {"MeterSerialNbr", m.serial},
             {"User1", "0~A-1~R~N~S1~P~INFO"},
             {"User2", m.user2},
             {"User3", "KWH~F~5~12~K~1~1~2~0"}});
    }
  }
  std::vector<std::string> Output() { return CrLfLines(ReadBytes(dir / "reading.dat")); }
};

TEST(MVRSReading, CountsCodesAndReadingsOfEachMeter) {
  MVRSReadingSite site;
  site.Hif({
      {.status = 0, .readType = 0, .reading = 0},                   // unread
      {.status = 1, .readType = 4, .reading = 0},                   // skipped
      {.status = 0, .readType = 2, .reading = 0, .meterType = 2},  // missed, coded as skipped
      {.status = 1, .readType = 2, .reading = 12345, .decimals = 2, .meterType = 3, .response = 4},
      {.status = 1, .readType = 1, .reading = 77, .user2 = "~~~~~~W~."},
      {.status = 1, .readType = 3, .reading = 5, .serial = "0", .user2 = "~~~~~~~7~~~~Yard"},
  });
  ASSERT_TRUE(site.Exchange().ConvertReading()) << site.Log();
  const auto lines = site.Output();
  ASSERT_EQ(lines.size(), 1u + 1u + 6u * 3u + 1u + 1u);
  const clsRecType fhd = Parsed(lines[0]);
  EXPECT_EQ(lines[0].size(), 126u);
  EXPECT_EQ(TextOf(fhd.GetValue("NumberRoutes")), "2");
  EXPECT_EQ(TextOf(fhd.GetValue("NumberReadRecords")), "6");
  const clsRecType rhd = Parsed(lines[1]);
  const std::map<std::string, int32_t> counts = {
      {"TotalCustomerRecords", 6}, {"NumberMeterRecords", 6}, {"NumberWaterMeters", 4},
      {"NumberGasMeters", 1},      {"NumberElectricMeters", 1}, {"NumberMissedReadings", 2},
      {"NumberSkippedReadings", 1}, {"TotalNumberKeyedReadings", 1}, {"TotalNumberOffsiteRadioReadings", 1},
      {"TotalNumberOpticalProbeReadings", 1}, {"NumberLocationMeters", 0}};
  for (const auto& [name, count] : counts) EXPECT_EQ(NumberOf(rhd.GetValue(name)), count) << name;
  EXPECT_EQ(lines[1].substr(45, 6), "0     ");  // time used: one zero
  EXPECT_EQ(rhd.GetValue("ScheduledReadDate"), Value::Date(DateSerial(2026, 11, 20)));
  EXPECT_EQ(lines.back().substr(0, 3), "FTR");
  EXPECT_EQ(lines[lines.size() - 2].substr(0, 3), "RTR");

  // Each meter's reading line: read code, read method, new read method,
  // reading, date, time, the reason (always cleared) and the previous reading.
  const char* expected[] = {"  N N 0000000000 00000000 000000 00 0000000500",
                            "S N N 0000000000 03052024 083015 00 0000000500",
                            "S K N 0000000000 00000000 000000 00 0000000500",
                            "O K K 0000000123 03052024 083015 00 0000000500",
                            "N R R 0000000077 03052024 083015 00 0000000500",
                            "N W W 0000000005 03052024 083015 00 0000000500"};
  for (size_t i = 0; i < 6; ++i) {
    const std::string& l = lines[2 + i * 3 + 2];
    EXPECT_EQ(l.substr(0, 3) + l.substr(61, 1) + " " + l.substr(25, 1) + " " + l.substr(93, 1) + " " + l.substr(33, 10) +
                  " " + l.substr(47, 8) + " " + l.substr(55, 6) + " " + l.substr(63, 2) + " " + l.substr(105, 10),
              std::string("RDG") + expected[i]) << i;
  }
  const clsRecType troubled = Parsed(lines[2 + 3 * 3 + 1]);
  EXPECT_EQ(TextOf(troubled.GetValue("TroubleMessageIndicator")), "Y");
  const std::string& radio = lines[2 + 4 * 3 + 1];
  EXPECT_EQ(radio.substr(59, 2), "00");  // "W" as the meter type
  EXPECT_EQ(radio.substr(78, 2), "00");  // a location with a point
  const clsRecType probe = Parsed(lines[2 + 5 * 3 + 1]);
  EXPECT_EQ(TextOf(probe.GetValue("MeterLocation")), "07");
  EXPECT_EQ(TextOf(probe.GetValue("MeterNumber")), std::string(12, ' '));
  EXPECT_EQ(TextOf(probe.GetValue("OriginalAdditionalMeterInfo")), std::string(20, ' '));
  EXPECT_EQ(TextOf(probe.GetValue("LocationExtraMeter")), "Y");  // the survey text's first letter
}

TEST(MVRSReading, RoutesWithoutMetersGiveOnlyTheFileLines) {
  MVRSReadingSite site;
  site.Hif({}, 3, 256);
  ASSERT_TRUE(site.Exchange().ConvertReading());
  const auto lines = site.Output();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], "FHDN N 003000000000000000000N" + std::string(91, ' ') + "000000");
  EXPECT_EQ(lines[1].substr(0, 3), "FTR");
}

// The records are read ahead on a second thread. One that fails there is
// read again where the person is asked, and the file goes on from it as if
// every record had been read in turn: only the failed meter's reading line
// differs from that of a file without the failure, no meter is missing or
// written twice.
TEST(MVRSReading, ARecordThatFailsIsAskedAboutInItsPlace) {
  const auto convert = [](int badDate) {
    MVRSReadingSite site;
    std::vector<ReadMeter> meters(700);
    for (size_t i = 0; i < meters.size(); ++i) {
      meters[i].route = i < 350 ? 1 : 2;
      meters[i].reading = static_cast<int>(i);
      meters[i].serial = "M" + std::to_string(i);
    }
    meters[500].readingDate = badDate;
    site.Hif(meters);
    site.shell.answers = {MsgAnswer::Ignore};
    EXPECT_TRUE(site.Exchange().ConvertReading());
    return std::pair(site.Output(), site.shell.questions);
  };
  const auto [good, none] = convert(20240305);
  const auto [bad, asked] = convert(20241399);
  EXPECT_TRUE(none.empty());
  EXPECT_EQ(asked, (std::vector<Question>{{"Type mismatch", "Error", MsgButtons::AbortRetryIgnore}}));
  ASSERT_EQ(bad.size(), good.size());
  std::vector<std::string> differ;
  for (size_t i = 0; i < good.size(); ++i) {
    if (bad[i] != good[i]) differ.push_back(good[i].substr(0, 3));
  }
  EXPECT_EQ(differ, (std::vector<std::string>{"RDG"}));
  EXPECT_EQ(good.size(), 1u + 4u + 700u * 3u + 1u);
}

TEST(MVRSReading, AMeterOutsideTheRouteTableAsksAbortRetryIgnore) {
  MVRSReadingSite site;
  site.Hif({{.route = 1}, {.route = 5}, {.route = 1}});
  // Ignored while counting, then Abort while writing: what was written
  // stays, with no trailer.
  site.shell.answers = {MsgAnswer::Ignore};
  ASSERT_TRUE(site.Exchange().ConvertReading());
  const Question subscript{"Subscript out of range", "Error", MsgButtons::AbortRetryIgnore};
  EXPECT_EQ(site.shell.questions, std::vector<Question>(2, subscript));
  auto lines = site.Output();
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[5].substr(0, 3), "RTR");

  // Retry runs the step again; Ignore goes on to the end.
  site.shell.questions.clear();
  site.shell.answers = {MsgAnswer::Retry};
  site.shell.answers.insert(site.shell.answers.end(), 11, MsgAnswer::Ignore);
  std::filesystem::remove(site.dir / "reading.dat");
  ASSERT_TRUE(site.Exchange().ConvertReading());
  EXPECT_GE(site.shell.questions.size(), 3u);
  lines = site.Output();
  EXPECT_EQ(lines.back().substr(0, 3), "FTR");
}

}  // namespace
}  // namespace hifx::test
