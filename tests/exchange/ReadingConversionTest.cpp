#include <gtest/gtest.h>

#include "exchange/MappedRecord.h"
#include "support/HifImage.h"
#include "support/RouteSite.h"

namespace hifx::test {
namespace {

struct Meter {
  int route, sequence, tag;
  int status, reading, low, high;
  int digits = 6, decimals = 0, readType = 1, response = 0;
  int date = 20240305, time = 83015;
  const char* account = "";
};

const std::string kFixedHeader = "MAPTYPE=1\r\nMAPFILTER=0\r\nMAPTERMINATOR= 3 \r\n";
const std::vector<std::string> kFixedFields = {"RouteNbr=1,5,L,B,0", "MeterTagNbr=6,6,R,Z,0",
                                               "CurReading=12,6,R,Z,0", "ReadType=18,1,L,B,0"};

class ReadingSite : public RouteSite {
 public:
  ReadingSite() {
    clsExchange& e = Exchange();
    e.ReadingSource = (dir / "reading.pdb").string();
    e.ReadingDestination = (dir / "billing.txt").string();
    e.ReadingMap = "Bill";
    e.OrphanDestination = (dir / "orphans.txt").string();
    e.OrphanMap = "Orph";
    e.ReReadDestination = (dir / "reread.pdb").string();
    ReadingMap(kFixedFields, kFixedHeader);
  }

  // A reading map of the given field lines (the rest not written); the
  // fixed test layout unless a test writes another.
  void ReadingMap(const std::vector<std::string>& lines, const std::string& header,
                  const std::string& name = "Bill", const std::string& ext = ".hrm") {
    std::string text = "HIF=1.1\r\n" + header;
    for (const auto& l : lines) text += l + "\r\n";
    WriteBytes(dir / (name + ext), text);
  }

  void Reading(const std::vector<Meter>& meters, int16_t version = 3, int orphans = 0) {
    TestShell quiet;
    HifWriter w(quiet, dir / "reading.pdb", version);
    w.Add({{"RecType", 0}, {"RouteNbr", 2}, {"MeterType", version}});
    for (int r = 1; r <= 2; ++r) w.Add({{"RecType", 1}, {"RouteNbr", r}, {"Initials", r == 1 ? "NORTH" : "SOUTH"}});
    // A version-1 file has no Decimals: that write is refused, the record left as it was.
    for (const Meter& m : meters) {
      w.Add({{"RecType", 2}, {"RouteNbr", m.route}, {"Sequence", m.sequence}, {"MeterTagNbr", m.tag},
             {"Digits", m.digits}, {"Decimals", m.decimals}, {"Status", m.status}, {"CurReading", m.reading},
             {"MinReading", m.low}, {"MaxReading", m.high}, {"ReadType", m.readType}, {"ResponseCode", m.response},
             {"ReadingDate", m.date}, {"ReadingTime", m.time}, {"ServiceUniqueID", m.account}});
    }
    for (int o = 0; o < orphans; ++o) {
      w.Add({{"RecType", 3}, {"MeterTagNbr", 9000 + o}, {"CurReading", 77 + o}, {"PrvReading", 101}});
    }
  }

  std::string Billing() { return ReadBytes(dir / "billing.txt"); }
};

TEST(ReadingDriver, RefusesBadSettingsInItsOwnWords) {
  struct Case {
    std::function<void(clsExchange&)> setup;
    std::string line;
  };
  const std::vector<Case> cases = {
      {[](clsExchange& e) { e.ReadingSource = " "; }, "Error: Reading Source not specified"},
      {[](clsExchange& e) { e.ReadingSource += ".none"; }, "Error: Reading Source does not exist"},
      {[](clsExchange& e) { e.ReadingDestination = ""; }, "Error: Reading Destination not specified"},
      {[](clsExchange& e) { e.ReadingMap = ""; }, "Error: Reading Conversion Map not specified"},
      {[](clsExchange& e) { e.OrphanConvert = -1; e.OrphanDestination = ""; }, "Error: Orphan Destination not specified"},
      {[](clsExchange& e) { e.OrphanConvert = -1; e.OrphanMap = ""; }, "Error: Orphan Conversion Map not specified"},
      {[](clsExchange& e) { e.AutoReRead = true; e.ReReadDestination = ""; }, "Error: Re-Read Destination not specified"},
      {[](clsExchange& e) { e.ReadingMap = "Nothing"; }, "Error: Could not load Reading Conversion Map"},
  };
  for (const Case& c : cases) {
    ReadingSite site;
    site.Reading({{1, 1, 11, 1, 5, 1, 9}});
    c.setup(site.Exchange());
    EXPECT_FALSE(site.Exchange().ConvertReading());
    EXPECT_EQ(site.shell.log.back(), c.line);
    EXPECT_FALSE(std::filesystem::exists(site.dir / "billing.txt")) << c.line;
  }
}

TEST(ReadingDriver, ALogAndABillingFile) {
  ReadingSite site;
  site.Reading({{1, 10, 11, 1, 5, 1, 9, 6, 0, 2}, {2, 10, 12, 0, 0, 1, 9}});
  ASSERT_TRUE(site.Exchange().ConvertReading());
  const clsExchange& e = site.Exchange();
  EXPECT_EQ(site.shell.log,
            (std::vector<std::string>{"Reading from " + e.ReadingSource, "Writing to " + e.ReadingDestination,
                                      "Using map Bill", "Reading Conversion Starting  13:05 2/29/2024",
                                      "Reading Conversion Finished", ""}));
  EXPECT_EQ(site.Billing(), "NORTH000011000005M\r\nSOUTH000012000000R\r\n");
}

TEST(ReadingOutput, DecimalsAndDigitsCutTheReading) {
  ReadingSite site;
  site.ReadingMap({"CurReading=1,8,R,Z,0"}, kFixedHeader);
  site.Reading({{1, 1, 11, 1, 123456, 0, 0, 0, 2}, {1, 2, 12, 1, 123456, 0, 0, 3, 2},
                {1, 3, 13, 1, 123456789, 0, 0, 9, 0}});
  ASSERT_TRUE(site.Exchange().ConvertReading());
  EXPECT_EQ(site.Billing(), "00001234\r\n00000234\r\n23456789\r\n");
}

TEST(ReadingOutput, FiltersAndTerminators) {
  const std::vector<Meter> meters = {{1, 1, 11, 1, 5, 1, 9}, {1, 2, 12, 0, 0, 1, 9}, {1, 3, 13, 0, 0, 1, 9, 6, 0, 1, 7}};
  const std::vector<std::pair<int, std::string>> filters = {
      {0, "11|12|13|"}, {1, "11|"}, {2, "11|13|"}, {3, "12|13|"}};
  for (const auto& [filter, expected] : filters) {
    ReadingSite site;
    site.ReadingMap({"MeterTagNbr=1,2,R,Z,0"}, "MAPTYPE=1\r\nMAPFILTER=" + std::to_string(filter) + "\r\nMAPTERMINATOR= 2 \r\n");
    site.Reading(meters);
    ASSERT_TRUE(site.Exchange().ConvertReading());
    std::string billing = site.Billing();
    std::replace(billing.begin(), billing.end(), '\n', '|');
    EXPECT_EQ(billing, expected) << filter;
  }
  const std::vector<std::pair<int, std::string>> terminators = {
      {0, "11"}, {1, "11\r"}, {2, "11\n"}, {3, "11\r\n"}, {4, std::string("11\0", 3)}, {7, "11"}};
  for (const auto& [terminator, expected] : terminators) {
    ReadingSite site;
    site.ReadingMap({"MeterTagNbr=1,2,R,Z,0"},
                    "MAPTYPE=1\r\nMAPLENGTH=0\r\nMAPTERMINATOR=" + std::to_string(terminator) + "\r\n");
    site.Reading({{1, 1, 11, 1, 5, 1, 9}});
    ASSERT_TRUE(site.Exchange().ConvertReading());
    EXPECT_EQ(site.Billing(), expected) << terminator;
  }
}

TEST(ReadingOutput, FixedColumnsPadsOverlaysAndTheLateColumn) {
  ReadingSite site;
  // Sequence at 5 after MeterTagNbr at 1..3: padded; CurReading overlays
  // columns 2-3; a field at a line exactly its position long lands late.
  site.ReadingMap({"Sequence=5,2,L,B,0", "MeterTagNbr=1,3,L,Z,0", "CurReading=2,2,R,Z,0", "Status=6,1,R,Z,0"},
                  "MAPTYPE=1\r\nMAPLENGTH=10\r\nMAPTERMINATOR= 3 \r\n");
  site.Reading({{1, 7, 5, 1, 42, 1, 99}});
  ASSERT_TRUE(site.Exchange().ConvertReading());
  EXPECT_EQ(site.Billing(), "542 7 1   \r\n");
}

TEST(ReadingOutput, EveryDateAndTimeCodeWithItsBlankForm) {
  struct Case {
    int code;
    const char* date;   // 2024-03-05
    const char* blank;  // a date of 0
  };
  for (const Case& c : std::vector<Case>{
           {10, "240305", "000000"},       {11, "24-03-05", "00-00-00"},     {12, "24/03/05", "00/00/00"},
           {14, "20240305", "00000000"},   {15, "2024-03-05", "0000-00-00"}, {16, "2024/03/05", "0000/00/00"},
           {20, "030524", "000000"},       {21, "03-05-24", "00-00-00"},     {22, "03/05/24", "00/00/00"},
           {24, "03052024", "00000000"},   {25, "03-05-2024", "00-00-0000"}, {26, "03/05/2024", "00/00/0000"},
           {30, "050324", "000000"},       {31, "05-03-24", "00-00-00"},     {32, "05/03/24", "00/00/00"},
           {34, "05032024", "00000000"},   {35, "05-03-2024", "00-00-0000"}, {36, "05/03/2024", "00/00/0000"},
           {0, "", ""}}) {
    EXPECT_EQ(clsExchange::FormatDate("20240305", c.code), c.date) << c.code;
    EXPECT_EQ(clsExchange::FormatDate("00000000", c.code), c.blank) << c.code;
    EXPECT_EQ(clsExchange::FormatDate("20261399", c.code), c.blank) << c.code;  // no such date
  }
  EXPECT_EQ(clsExchange::FormatDate("20240230", 21), "00-00-00");
  EXPECT_EQ(clsExchange::FormatDate("20240229", 21), "02-29-24");
  EXPECT_EQ(clsExchange::FormatDate("01000305", 15), "100-03-05");  // a year is as many digits as it has
  // Seconds never show: 41 and 43 give what 40 and 42 give.
  for (const auto& [code, time, blank] : {std::tuple{40, "0830", "0000"}, std::tuple{41, "0830", "0000"},
                                          std::tuple{42, "08:30", "00:00"}, std::tuple{43, "08:30", "00:00"}}) {
    EXPECT_EQ(clsExchange::FormatTime("83015", code), time) << code;
    EXPECT_EQ(clsExchange::FormatTime("0", code), blank) << code;
  }
  EXPECT_EQ(clsExchange::FormatTime("1530", 42), "00:15");  // filled on the left: 00:15:30
  EXPECT_EQ(clsExchange::FormatTime(" 20231530 ", 42), "23:15");  // the last six digits of a longer one
  EXPECT_EQ(clsExchange::FormatTime("83015", 50), "");
  EXPECT_THROW(clsExchange::FormatTime("256000", 42), Failure);
  EXPECT_EQ(clsExchange::ExtractUser(std::string("a~b\x01~")), (std::vector<std::string>{"a", std::string("b\0", 2), ""}));
  // What a route packs in a user field comes back as it went in, a NUL and all.
  EXPECT_EQ(clsExchange::CombineUser({"a", std::string_view("b\0c\0", 4), "", "d"}), std::string("a~b\x01"
                                                                                                 "c\x01~~d"));
  EXPECT_EQ(clsExchange::ExtractUser(clsExchange::CombineUser({"a", std::string_view("b\0", 2), ""})),
            (std::vector<std::string>{"a", std::string("b\0", 2), ""}));
  EXPECT_EQ(clsExchange::CombineUser({"x"}), "x");
  EXPECT_EQ(clsExchange::CombineUser({}), "");
}

TEST(ReadingDriver, AnExistingDestinationAndAFileThatCannotBeRead) {
  ReadingSite site;
  site.Reading({{1, 1, 11, 1, 5, 1, 9}});
  WriteBytes(site.dir / "billing.txt", "old");
  site.shell.answers = {MsgAnswer::No};
  EXPECT_FALSE(site.Exchange().ConvertReading());
  EXPECT_EQ(site.shell.questions[0].title, "Reading Destination already exists");
  EXPECT_EQ(site.shell.log.back(), "Error: Reading Destination already exists");
  EXPECT_EQ(site.Billing(), "old");
  // More records than a file can hold: the open fails.
  std::string bytes = ReadBytes(site.dir / "reading.pdb");
  bytes[76] = static_cast<char>(0x80);
  WriteBytes(site.dir / "reading.pdb", bytes);
  site.shell.answers = {MsgAnswer::Yes};
  EXPECT_FALSE(site.Exchange().ConvertReading());
  EXPECT_EQ(site.shell.log.back(), "Error: Could not read HIF file");
}

TEST(ReadingOutput, DelimitedLinesQuoteTextsTwice) {
  ReadingSite site;
  site.ReadingMap({"RouteNbr=1,0,L,B,0", "MeterTagNbr=2,0,L,B,0", "ServiceUniqueID=4,0,L,B,0",
                   "ReadingDate=5,0,L,B,14", "ReadingTime=6,0,L,B,42"},
                  "MAPTYPE=2\r\nMAPDELIMITER=,\r\nMAPQUOTE=\"\r\nMAPTERMINATOR= 3 \r\n");
  Meter m{1, 1, 11, 1, 5, 1, 9};
  m.account = "A\"B";
  m.time = 1530;
  site.Reading({m});
  ASSERT_TRUE(site.Exchange().ConvertReading());
  EXPECT_EQ(site.Billing(), "\"\"\"NORTH\"\"\",11,,\"\"\"A\"\"\"\"B\"\"\",20240305,00:15\r\n");
}

TEST(ReadingOutput, AnOlderFileIsReadWithDefaults) {
  ReadingSite site;
  site.ReadingMap({"MeterTagNbr=1,2,R,Z,0", "InitPulseCount=3,3,R,Z,0", "User5=6,2,L,B,0"}, kFixedHeader);
  site.Reading({{1, 1, 11, 1, 5, 1, 9}, {1, 2, 12, 1, 5, 1, 9}}, 1);
  ASSERT_TRUE(site.Exchange().ConvertReading());
  EXPECT_EQ(site.Billing(), "11000  \r\n12000  \r\n");
  EXPECT_EQ(site.shell.Logged("Warning: Defaulted InitPulseCount to 0"), 1u);
}

TEST(ReadingDriver, OrphansAppendedOrReplaced) {
  for (const bool replace : {false, true}) {
    ReadingSite site;
    site.ReadingMap({"MeterTagNbr=1,0,L,B,0", "CurReading=2,0,L,B,0", "PrvReading=3,0,L,B,0"},
                    "MAPTYPE=2\r\nMAPDELIMITER=,\r\nMAPTERMINATOR= 3 \r\n", "Orph", ".hom");
    site.Reading({{1, 1, 11, 1, 5, 1, 9}}, 3, 2);
    WriteBytes(site.dir / "orphans.txt", "old\r\n");
    site.Exchange().OrphanConvert = -1;
    site.Exchange().OrphanReplace = replace ? -1 : 0;
    ASSERT_TRUE(site.Exchange().ConvertReading());
    const std::string orphans = ReadBytes(site.dir / "orphans.txt");
    const std::string fresh = "9000,77,101\r\n9001,78,101\r\n";
    EXPECT_EQ(orphans, replace ? fresh : "old\r\n" + fresh);
    const std::string file = "Notice: File " + site.Exchange().OrphanDestination;
    EXPECT_EQ(site.shell.Logged(file + " overwritten per configuration.  5 bytes lost."), replace ? 1u : 0u);
    EXPECT_EQ(site.shell.Logged(file + " now contains " + std::to_string(orphans.size()) + " bytes."), 1u);
  }
}

TEST(ReadingDriver, TheReReadFileHoldsTheExceptionsAsUnreadMeters) {
  ReadingSite site;
  site.Exchange().AutoReRead = true;
  site.shell.answers = {MsgAnswer::Yes};
  // Route 1: in window, on the edges; route 2: unread, above, below.
  site.Reading({{1, 1, 11, 1, 5, 1, 9}, {1, 2, 12, 1, 9, 1, 9}, {1, 3, 13, 1, 1, 1, 9},
                {2, 1, 21, 0, 0, 1, 9}, {2, 2, 22, 1, 10, 1, 9}, {2, 3, 23, 1, 0, 1, 9}},
               3, 1);
  ASSERT_TRUE(site.Exchange().ConvertReading());
  ASSERT_EQ(site.shell.questions.size(), 1u);
  EXPECT_EQ(site.shell.questions[0].title, "ReRead Destination already exists");
  EXPECT_EQ(site.shell.Logged("Notice: ReRead File prepared with 3 Meters"), 1u);
  const auto records = site.Records("reread.pdb");
  ASSERT_EQ(records.size(), 1u + 1 + 3);  // header, SOUTH renumbered 1, three meters
  EXPECT_EQ(std::tuple(records[0].Item("RouteNbr"), records[0].Item("PrvReading"), records[0].Item("Sequence")),
            std::tuple(Value::Long(1), Value::Long(3), Value::Long(20240229)));
  EXPECT_EQ(std::tuple(records[1].Item("Initials"), records[1].Item("RouteNbr")), std::tuple(Value("SOUTH"), Value::Long(1)));
  for (const auto& r : std::vector(records.begin() + 2, records.end())) {
    EXPECT_EQ(std::tuple(r.Item("RouteNbr"), r.Item("Status"), r.Item("CurReading"), r.Item("ReadingDate")),
              std::tuple(Value::Long(1), Value::Integer(0), Value::Long(0), Value::Long(0)));
  }
  EXPECT_EQ(records[3].Item("MeterTagNbr"), Value::Long(22));
}

TEST(ReadingDriver, NoExceptionsLeaveAHeaderOnlyFileAndTheQuestionIsAlwaysPut) {
  ReadingSite site;
  site.Exchange().AutoReRead = true;
  site.Reading({{1, 1, 11, 1, 5, 1, 9}});
  site.shell.answers = {MsgAnswer::No};
  EXPECT_FALSE(site.Exchange().ConvertReading());  // the answer No makes the result false
  EXPECT_EQ(site.shell.questions.size(), 1u);       // asked though no file exists
  EXPECT_FALSE(std::filesystem::exists(site.dir / "reread.pdb"));
  site.shell.answers = {MsgAnswer::Yes, MsgAnswer::Yes};
  EXPECT_TRUE(site.Exchange().ConvertReading());
  EXPECT_EQ(site.shell.Logged("Notice: No exceptions found in reading.  Not creating re-read file"), 1u);
  EXPECT_EQ(site.Records("reread.pdb").size(), 1u);
}

// A whole record is read a field at a time as each is first asked for, so a
// field written before it is asked for reads as written; a short one is read
// at once, its missing numbers said in the order of the fields, and keeps
// what it read.
TEST(MappedRecord, AWholeRecordIsReadAsAskedAndAShortOneAtOnce) {
  TempDir dir;
  TestShell shell;
  clsPalmDB db(shell);
  db.AddField(kFieldInt16, "RecType");
  db.AddField(kFieldInt32, "Reading");
  db.AddField(kFieldText, "Name");
  db.AddField(kFieldInt8, "Flag");
  clsExchMap map(dir.path());
  map.AddField(kTypeText, "Name", false, 0, 0, "Name");
  MappedRecord record;
  record.Plan(map, db);

  db.SetRawData(Hex("0002 0000002A 07") + "AB" + std::string(1, '\0'));
  record.Read(db);
  db.SetItem("Reading", Value::Long(43));
  EXPECT_EQ(record.At(2), Value::Long(43));
  EXPECT_EQ(*record.ForMapField(0), Value("AB"));
  EXPECT_EQ(record.At(4), Value::Integer(7));
  EXPECT_TRUE(shell.Asked().empty());

  db.SetRawData(Hex("0003 0000"));
  record.Read(db);
  EXPECT_EQ(shell.Asked(), std::vector<std::string>(2, "Subscript out of range"));
  db.SetRawData(Hex("0004 0000002A 07"));
  EXPECT_EQ(record.At(1), Value::Long(3));
  EXPECT_TRUE(record.At(2).IsEmpty());
  EXPECT_TRUE(record.At(4).IsEmpty());
  EXPECT_EQ(*record.ForMapField(0), Value(""));
}

}  // namespace
}  // namespace hifx::test
