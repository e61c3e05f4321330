// E5000 download files into route HIFs: the lines of an account and of a
// meter gathered into one record, the routes and their account counts,
// unknown and damaged lines, repeated serials.
#include <gtest/gtest.h>

#include "support/RouteSite.h"

namespace hifx::test {
namespace {

// Texts left-aligned in their widths, one after the other.
std::string Columns(std::initializer_list<std::pair<std::string, size_t>> fields) {
  std::string line;
  for (const auto& [text, width] : fields) {
    std::string column = text;
    column.resize(width, ' ');
    line += column;
  }
  return line;
}

std::string F(const std::string& route) { return Columns({{"F", 1}, {route, 8}}); }
std::string A(const std::string& account, const std::string& sequence, const std::string& instruction = "") {
  return Columns({{"A", 1}, {"ROUTE", 8}, {account, 10}, {"", 12}, {sequence, 5}, {"0R", 2}, {instruction, 2}});
}
std::string B(const std::string& name, const std::string& address) {
  return Columns({{"B", 1}, {name, 32}, {address, 32}});
}
std::string H(const std::string& serial, int dials, int low, int high, int prior, const std::string& type,
              int decimals = 0, const std::string& kind = "H") {
  char readings[32];
  std::snprintf(readings, sizeof readings, "%d%08d%08d%08d", dials, low, high, prior);
  return Columns({{kind, 1}, {"01", 2}, {serial, 10}, {readings, 25}, {type, 1}, {"0000020AC01", 11},
                  {std::to_string(decimals), 1}});
}
std::string Z(const std::string& route, const std::string& accounts) {
  return Columns({{"Z", 1}, {route, 8}, {accounts, 4}, {"0000", 4}});
}

class E5KRoute : public testing::Test {
 protected:
  E5KRoute() { site.Map({}, 4); }
  bool Convert(const std::vector<std::string>& lines) {
    site.Source(lines);
    return site.Exchange().ConvertRoute();
  }
  RouteSite site;
};

TEST_F(E5KRoute, AMeterGathersTheLinesOfItsAccountAndItsOwn) {
  ASSERT_TRUE(Convert({F("NORTH"), A("100-002", "00020", "DG"), B("JONES MARY", "14 MAIN ST"),
                       "ELOT 5 DP 1234", "C02PV0000000014", "DKEYS AT OFFICE",
                       H("1000002", 6, 200, 1200, 700, "W", 1),
                       "K01SIDE PATH" + std::string(23, ' ') + "BEHIND FENCE", "K05" + std::string(32, ' ') + "UNDER LID",
                       "LNEAR GATE",
                       // A second meter of the account: a serial with letters, a type the HIF doesn't know.
                       H("12AB", 5, 0, 50000, 21000, "X", 0, "I"), Z("NORTH", "0031"),
                       F("SOUTH"), A("200-001", "00010"), H("AB12", 0, 0, 0, 0, "G")}));
  const auto records = site.Records();
  ASSERT_GE(records.size(), 3u);
  EXPECT_EQ(records[0].Item("PrvReading"), Value::Long(3));
  // Each route header has its "Z" line's account count; a route with none, 0.
  EXPECT_EQ(records[1].Item("PrvReading"), Value::Long(2));
  EXPECT_EQ(records[1].Item("User1"), Value("31"));
  EXPECT_EQ(records[2].Item("User1"), Value("0"));

  const auto meters = site.Meters();
  ASSERT_EQ(meters.size(), 3u);
  // The first meter; the second, of the same account but with none of the
  // first meter's lines; the third, of an account that keeps what its own
  // lines don't give.
  const std::vector<std::tuple<const char*, Value, Value, Value>> expected = {
      {"RouteNbr", Value::Long(1), Value::Long(1), Value::Long(2)},
      {"Sequence", Value::Long(20), Value::Long(20), Value::Long(10)},
      {"MeterTagNbr", Value::Long(1000002), Value::Long(12), Value::Long(0)},
      {"MeterType", Value::Integer(1), Value::Integer(0), Value::Integer(2)},
      {"Digits", Value::Integer(6), Value::Integer(5), Value::Integer(0)},
      {"Decimals", Value::Integer(1), Value::Integer(0), Value::Integer(0)},
      {"MinReading", Value::Long(200), Value::Long(0), Value::Long(0)},
      {"MaxReading", Value::Long(1200), Value::Long(50000), Value::Long(0)},
      {"PrvReading", Value::Long(700), Value::Long(21000), Value::Long(0)},
      {"ReadType", Value::Integer(1), Value::Integer(2), Value::Integer(2)},
      {"Message", Value("Billing: DG KEYS AT OFFICE BEHIND FENCE UNDER LID"), Value("Billing: DG"), Value("")},
      {"ServiceAddress", Value("14 MAIN ST LOT 5 DP 1234 NEAR GATE"), Value("14 MAIN ST LOT 5 DP 1234"),
       Value("14 MAIN ST LOT 5 DP 1234")},
      {"BillingName", Value("JONES MARY"), Value("JONES MARY"), Value("JONES MARY")},
      {"ServiceUniqueID", Value("100-002"), Value("100-002"), Value("200-001")},
      {"MeterSerialNbr", Value("1000002"), Value("12AB"), Value("AB12")},
      {"User1", Value("PV0000000014"), Value("PV0000000014"), Value("PV0000000014")},
  };
  for (const auto& [field, first, second, third] : expected) {
    EXPECT_EQ(meters[0].Item(field), first) << field;
    EXPECT_EQ(meters[1].Item(field), second) << field;
    EXPECT_EQ(meters[2].Item(field), third) << field;
  }
}

TEST_F(E5KRoute, UnknownAndDamagedLinesAreLoggedAndSkipped) {
  const std::string overlong = A("100-001", "00010") + std::string(5000, 'X');
  ASSERT_TRUE(Convert({"", F("NORTH"), "garbage\x01\xfe", overlong, std::string(300, '#'), B("DOE", "1 ELM"),
                       "K02 NOT A KIND", H("1000001", 0, 0, 0, 0, "W"), "a lower-case kind",
                       // The file ends inside an account that has no meter yet.
                       A("100-009", "00090"), B("ROE", "9 ELM")}));
  const auto& log = site.shell.log;
  ASSERT_EQ(log.size(), 12u);
  EXPECT_EQ(log[3], "Route Conversion Starting 13:05 2/29/2024");
  // Logged in the first pass only.
  EXPECT_EQ(std::vector<std::string>(log.begin() + 4, log.begin() + 9),
            (std::vector<std::string>{"Error: Unknown record type '' at line 1",
                                      "Error: Unknown record type 'g' at line 3",
                                      "Error: Unknown record type '#' at line 5",
                                      "Error: Unknown record type 'K' at line 7",
                                      "Error: Unknown record type 'a' at line 9"}));
  EXPECT_EQ(log[9], "1 meters written to Route HIF File");
  EXPECT_EQ(log[10], "Route Conversion Finished");
  const auto meters = site.Meters();
  ASSERT_EQ(meters.size(), 1u);
  EXPECT_EQ(meters[0].Item("ServiceUniqueID"), Value("100-001"));
  EXPECT_EQ(meters[0].Item("BillingName"), Value("DOE"));
}

TEST_F(E5KRoute, ARepeatedSerialSpoilsTheFileButIsWritten) {
  EXPECT_FALSE(Convert({F("NORTH"), A("1", "00001"), H("1000001", 0, 0, 0, 0, "W"), A("2", "00002"),
                        H(" 1000001", 0, 0, 0, 0, "W"), Z("NORTH", "0002")}));
  // The line is the one that closed the meter, as text behind a blank.
  EXPECT_EQ(site.shell.Tail(5), (std::vector<std::string>{"Meter Tag Number of 1000001 is duplicate in Line  6",
                                                          "   Info: NORTH", "Route HIF File NOT created",
                                                          "Problems encountered; Route file unusable", ""}));
  EXPECT_EQ(site.Meters().size(), 2u);
}

TEST(E5KRouteText, IsAllDigitsLooksAtTheTrimmedText) {
  for (const auto& [text, digits] : {std::pair{"0123456789", true}, {"  42  ", true}, {"", true}, {"   ", true},
                                     {"12A", false}, {"1 2", false}, {"-1", false}, {"1.5", false}}) {
    EXPECT_EQ(clsExchange::IsAllDigits(text), digits) << '"' << text << '"';
  }
}

}  // namespace
}  // namespace hifx::test
