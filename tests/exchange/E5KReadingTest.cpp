// Reading HIFs into E5000 upload files: which meters go in, the route and
// account lines around them, and what each line takes from the HIF.
#include <gtest/gtest.h>

#include "support/HifImage.h"
#include "support/RouteSite.h"

namespace hifx::test {
namespace {

struct Meter {
  int route, sequence;
  const char* account;
  const char* user1;
  int readType = 1, reading = 500, date = 20240305, time = 83015;
  const char* serial = "1000001";
  const char* user2 = "";
};

class E5KReading : public testing::Test {
 protected:
  E5KReading() {
    clsExchange& e = site.Exchange();
    e.ReadingSource = (site.dir / "reading.pdb").string();
    e.ReadingDestination = (site.dir / "upload.txt").string();
    e.ReadingMap = "E5000";
    WriteBytes(site.dir / "E5000.hrm", "HIF=1.1\r\nMAPTYPE=4\r\n");
  }

  // A file header, two route headers with their account counts, the meters.
  void Reading(const std::vector<Meter>& meters, const std::string& initials = "HIF loaded from route.txt",
               const std::string& response = "") {
    TestShell quiet;
    HifWriter w(quiet, site.dir / "reading.pdb");
    w.Add({{"RecType", kRecFileHeader}, {"RouteNbr", 2}, {"MeterType", 3}, {"Initials", initials},
           {"ResponseText", response}});
    for (int r = 1; r <= 2; ++r) {
      w.Add({{"RecType", kRecRouteHeader}, {"RouteNbr", r}, {"Initials", r == 1 ? "NORTH" : "SOUTH"},
             {"User1", r == 1 ? "7" : "2"}});
    }
    for (const Meter& m : meters) {
      w.Add({{"RecType", kRecMeter}, {"RouteNbr", m.route}, {"Sequence", m.sequence}, {"CurReading", m.reading},
             {"ReadingDate", m.date}, {"ReadingTime", m.time}, {"ReadType", m.readType},
             {"ServiceUniqueID", m.account}, {"MeterSerialNbr", m.serial}, {"User1", m.user1}, {"User2", m.user2}});
    }
  }

  // The upload's lines, without their CR LF.
  std::vector<std::string> Upload() { return CrLfLines(ReadBytes(site.dir / "upload.txt")); }

  RouteSite site;
};

// An upload line: the text, then blanks to 80 columns.
std::string L(const std::string& text) { return text + std::string(80 - text.size(), ' '); }

TEST_F(E5KReading, RoutesAccountsAndMetersInFileOrder) {
  Reading({{1, 30, "ACC-1", "VG0000000001", 1, 1234, 20240305, 83015, "1000001", "01"},
           {1, 40, "ACC-1", "", 1, 0, 20240306, 90000, "SN2"},  // read as 0 on a radio meter: written
           {1, 5, "ACC-X", "VG9", 4},                            // ReadType 4: passed over
           {1, 6, "ACC-X", "VG9", 2, 0},                         // ReadType 2 read as 0: unread
           {1, 7, "ACC-X", "VG9", 1, 99, 0},                     // no date: never visited
           {2, 1, "ACC-S", "VG5", 4},                            // every meter of SOUTH fails: no lines
           {1, 20, "ACC-2", "", 2, 77, 20240307, 101500, "12345678901"},
           {1, 21, "ACC-2", "VG2", 2, 78, 20240307, 101600}},
          "P42 loaded", "XYZEMP");
  ASSERT_TRUE(site.Exchange().ConvertReading());
  EXPECT_EQ(site.shell.log.back(), "");
  EXPECT_EQ(site.shell.log[site.shell.log.size() - 2], "Reading Conversion Finished");
  // NoofAccounts is the route header's count, however many accounts come;
  // the sequences are the first and last in file order; the read date is
  // the first meter's.
  EXPECT_EQ(Upload(),
            (std::vector<std::string>{
                L("ANORTH   00070004P42240305  00030000210"),
                L("CNORTH   ACC-1        200305"),
                L("S02VG0000000001"),
                L("D011000001         VG0000"),
                L("E0000012340083015   1000"),
                L("D  SN2"),
                L("E0000000000090000   1000"),
                // A new account text starts an account; its first meter has no User1, so no "S" line.
                L("CNORTH   ACC-2        200307"),
                L("D  1234567890"),
                L("E0000000770101500   1000"),
                L("D  1000001         VG2   "),
                L("E0000000780101600   1000"),
                L("ZNORTH   P42EMP"),
            }));
}

TEST_F(E5KReading, ARouteMetAgainIsOpenedAgainAndAnEmptyAccountOpensNone) {
  // A new route forgets the account before it, so the same account opens
  // again there.
  Reading({{2, 1, "", "VG1"}, {1, 2, "A1", "VG1"}, {2, 3, "A1", ""}});
  ASSERT_TRUE(site.Exchange().ConvertReading());
  EXPECT_EQ(Upload(), (std::vector<std::string>{
                          L("ASOUTH   00020002HIF240305  00001000030"), L("D  1000001         VG1"),
                          L("E0000005000083015   1000"), L("ZSOUTH   HIF"),
                          L("ANORTH   00070001HIF240305  00002000020"), L("CNORTH   A1           200305"),
                          L("S02VG1"), L("D  1000001         VG1"), L("E0000005000083015   1000"),
                          L("ZNORTH   HIF"), L("ASOUTH   00020002HIF240305  00001000030"),
                          L("CSOUTH   A1           200305"), L("D  1000001"), L("E0000005000083015   1000"),
                          L("ZSOUTH   HIF")}));
}

TEST_F(E5KReading, AnUploadWithNoMeterToSendStillEndsWithItsZLine) {
  Reading({{1, 1, "A1", "VG1", 4}, {2, 2, "A2", "VG2", 1, 99, 0}}, "P42 loaded", "XYZEMP");
  ASSERT_TRUE(site.Exchange().ConvertReading());
  EXPECT_EQ(Upload(), (std::vector<std::string>{L("Z        P42EMP")}));
}

TEST_F(E5KReading, AMeterOfARouteWithNoHeaderIsAFailureOfTheRun) {
  Reading({{1, 1, "A1", "VG1"}, {3, 2, "A1", "VG1"}});
  EXPECT_FALSE(site.Exchange().ConvertReading());
  EXPECT_EQ(site.shell.Logged("Subscript out of range"), 1u);
  EXPECT_TRUE(Upload().empty());
}

}  // namespace
}  // namespace hifx::test
