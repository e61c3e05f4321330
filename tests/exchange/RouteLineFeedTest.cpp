#include <gtest/gtest.h>

#include <functional>

#include "exchange/RouteLineFeed.h"
#include "support/RouteSite.h"

namespace hifx::test {
namespace {

// Lines enough to fill several of the feed's batches, with a route that
// changes, read types of both cases and the digits given.
std::vector<std::string> ManyLines(size_t count, const std::function<int(size_t)>& digits) {
  std::vector<std::string> lines;
  for (size_t i = 0; i < count; ++i) {
    lines.push_back(FixedLine(std::to_string(i / 100 + 1), static_cast<int>(i + 1), static_cast<int>(i + 1), 'W',
                              "RmSp"[i % 4], "A" + std::to_string(i), "B", digits(i)));
  }
  return lines;
}

std::unique_ptr<LineReader> Open(RouteSite& site) { return std::make_unique<LineReader>(site.dir / "route.txt"); }

}  // namespace

// The feed gives what one parser gives, line by line, across the ends of
// its batches: the values, autonumbers and prompts included, the read type
// and the place in the file.
TEST(RouteLineFeed, GivesTheLinesOfOneParserInOrder) {
  RouteSite site;
  site.Map(NumberedLayout("User2", "K1"));
  site.Source(ManyLines(700, [](size_t i) { return static_cast<int>(i % 30000); }));
  clsExchMap map(site.dir.path());
  ASSERT_TRUE(map.LoadMap("Route.hcm", kUseRoute));
  clsPrompts prompts;
  prompts.Add("User1", "ASKED");

  RouteLineParser parser(map, prompts);
  const std::unique_ptr<LineReader> reader = Open(site);
  RouteLineFeed feed(Open(site), map, prompts);
  std::string text;
  size_t lines = 0;
  while (reader->ReadLine(text)) {
    const RouteLine& expected = parser.Parse(text);
    const RouteLineFeed::Line* line = feed.Next();
    ASSERT_NE(line, nullptr) << lines;
    for (const MeterField field : {MeterField::RouteNbr, MeterField::Sequence, MeterField::MeterTagNbr,
                                   MeterField::ServiceAddress, MeterField::Digits, MeterField::User1}) {
      ASSERT_EQ(line->values[field], expected[field]) << "line " << lines + 1;
    }
    ASSERT_EQ(line->readType, parser.ReadType());
    ASSERT_EQ(line->position, reader->Position());
    ++lines;
  }
  EXPECT_EQ(lines, 700u);
  EXPECT_EQ(feed.Next(), nullptr);
  EXPECT_EQ(feed.Next(), nullptr);
  EXPECT_EQ(parser.AutoNumber(), 700);
}

// A line that can't be parsed fails where it stands: every line before it
// comes first, and the failure again on any later call.
TEST(RouteLineFeed, AFailureComesAfterTheLinesBeforeIt) {
  RouteSite site;
  site.Map(FixedLayout());
  site.Source(ManyLines(900, [](size_t i) { return i == 600 ? 99999 : 5; }));
  clsExchMap map(site.dir.path());
  ASSERT_TRUE(map.LoadMap("Route.hcm", kUseRoute));
  const clsPrompts prompts;
  RouteLineFeed feed(Open(site), map, prompts);
  size_t lines = 0;
  int failure = 0;
  try {
    while (feed.Next() != nullptr) ++lines;
  } catch (const Failure& e) {
    failure = e.Number();
  }
  EXPECT_EQ(std::pair(lines, failure), std::pair(size_t{600}, fail::kOverflow));
  EXPECT_THROW(feed.Next(), Failure);
}

// A conversion that stops early leaves the reading thread behind it
// stopped, however far the file goes on.
TEST(RouteLineFeed, StopsWhenLeftEarly) {
  RouteSite site;
  site.Map(FixedLayout());
  site.Source(ManyLines(5000, [](size_t) { return 5; }));
  clsExchMap map(site.dir.path());
  ASSERT_TRUE(map.LoadMap("Route.hcm", kUseRoute));
  const clsPrompts prompts;
  {
    RouteLineFeed feed(Open(site), map, prompts);
    ASSERT_NE(feed.Next(), nullptr);
  }
  RouteLineFeed untouched(Open(site), map, prompts);
}

// The conversion counts the lines it is handed: a repeated tag far into
// the file is reported at its own line, and the run stops there.
TEST(RouteLineFeed, AConversionNamesTheLineOfARepeatedTag) {
  RouteSite site;
  std::vector<std::string> lines = ManyLines(900, [](size_t) { return 5; });
  lines[700] = FixedLine("8", 701, 41, 'W', 'R', "HERE", "B");
  site.Fixed(lines);
  EXPECT_FALSE(site.Exchange().ConvertRoute());
  EXPECT_EQ(site.shell.Tail(5),
            (std::vector<std::string>{"Meter Tag Number of 41 is duplicate in Line 701", "   Info: HERE B",
                                      "Route HIF File NOT created", "Route Conversion Finished", ""}));
}

}  // namespace hifx::test
