// The command line as a nightly script meets it: a summary of what each
// run wrote, the same summary as JSON, a map named with or without its
// extension, and no half a run where a question can't be asked.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "support/ExampleSite.h"

namespace hifx::test {
namespace {

using Scripting = ExampleSite;

// The count of records in a handheld file's header, and of lines in a text file.
std::string Records(const std::string& file) { return std::to_string(BigEndianAt(ReadBytes(file), 76, 2)); }
std::string Lines(const std::string& file) {
  const std::string text = ReadBytes(file);
  return std::to_string(std::count(text.begin(), text.end(), '\n'));
}

// The summary line with its time made constant.
std::string Timeless(const std::string& err) {
  return std::regex_replace(err, std::regex(R"( in [0-9]+\.[0-9]{3} s\n)"), " in T s\n");
}

TEST_F(Scripting, EachRunThatWritesFilesEndsWithWhatItWrote) {
  const std::string route = (dir / "route.pdb").string();
  const auto made = Hifx({"route", "--dest", route, "--source", kExamples + "route-fixed.txt"});
  ASSERT_EQ(made.status, 0) << made.err;
  EXPECT_EQ(Timeless(made.err), "hifx: route: wrote " + route + " (" + Records(route) + " records) in T s\n");
  // Refused: the file stays as it was, and nothing is said to be written.
  const auto refused = Hifx({"route", "--dest", route, "--source", kExamples + "route-fixed.txt"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(Timeless(refused.err).find("hifx: route: wrote nothing in T s\n"), std::string::npos) << refused.err;

  const std::string reading = (dir / "reading.pdb").string();
  Fill(route, reading);
  const std::string billing = (dir / "billing.txt").string(), orphans = (dir / "orphans.txt").string(),
                    reread = (dir / "reread.pdb").string();
  const auto read = Hifx({"--yes", "reading", "--source", reading, "--dest", billing, "--orphans", orphans,
                          "--reread", reread});
  ASSERT_EQ(read.status, 0) << read.out << read.err;
  EXPECT_EQ(Timeless(read.err).substr(Timeless(read.err).rfind("hifx: reading: ")),
            "hifx: reading: wrote " + billing + " (" + Lines(billing) + " lines), " + orphans + " (" + Lines(orphans) +
                " lines), " + reread + " (" + Records(reread) + " records) in T s\n");

  const auto sorted = Hifx({"sort", reading});
  EXPECT_EQ(Timeless(sorted.err).substr(Timeless(sorted.err).rfind("hifx: ")),
            "hifx: sort: wrote " + reading + " (" + Records(reading) + " records) in T s\n");
}

// --json: one object on standard output, the log moved to standard error.
TEST_F(Scripting, TheSummaryAsJsonForScripts) {
  const std::string route = (dir / "route.pdb").string();
  const auto r = Hifx({"route", "--json", "--dest", route, "--source", kExamples + "route-fixed.txt"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out.rfind(R"({"command":"route","exit":0,"written":[{"file":)" + JsonQuoted(route) + R"(,"records":)" +
                          Records(route) + R"(}],"seconds":)", 0),
            0u) << r.out;
  EXPECT_EQ(r.out.back(), '\n');
  EXPECT_NE(r.err.find("Route Conversion Finished\n"), std::string::npos) << r.err;
  const auto sorted = Hifx({"sort", "--json", (dir / "missing.pdb").string()});
  EXPECT_EQ(sorted.status, 66);
  EXPECT_EQ(sorted.out.rfind(R"({"command":"sort","exit":66,"written":[],"seconds":)", 0), 0u) << sorted.out;
}

// A run that fails on a file it reads follows the system's own words with
// a line naming the file and what is wrong with it, and exits by that.
TEST_F(Scripting, AFailedRunNamesTheFileItCouldNotRead) {
  const std::string missing = (dir / "missing.txt").string(), folder = (dir / "folder").string(),
                    damaged = (dir / "notes.pdb").string();
  std::filesystem::create_directory(folder);
  WriteBytes(damaged, std::string(100, 'x'));
  const std::string damage = "damaged handheld file: the database name has no terminating NUL within its 32 bytes";
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string system;  // the system's own words, in the log or on standard error
    std::string said;    // the line that follows them on standard error
  };
  const std::vector<Case> cases = {
      {{"route", "--source", missing, "--dest", (dir / "r.pdb").string()}, 66, "Error: Route Source does not exist\n",
       "hifx: route: " + missing + ": no such file\n"},
      {{"reread", "--source", folder, "--dest", (dir / "r.pdb").string()}, 65, "Error: ReRead Source does not exist\n",
       "hifx: reread: " + folder + ": a folder, not a file\n"},
      {{"reading", "--source", damaged, "--dest", (dir / "b.txt").string(), "--no-reread"}, 65,
       "Reading Conversion Finished\n", "hifx: reading: " + damaged + ": " + damage + "\n"},
      {{"sort", damaged}, 65, "Error: Input past end of file\n", "hifx: sort: " + damaged + ": " + damage + "\n"},
      {{"check", missing}, 66, "The route would not convert: Error: Route Source does not exist\n",
       "hifx: check: " + missing + ": no such file\n"},
      {{"stats", missing}, 66, "", "hifx: stats: could not read HIF file " + missing + ": no such file\n"},
#ifdef HIFX_HAVE_QT
      {{"report", "--type", "reading", "--pdf", (dir / "r.pdf").string(), damaged}, 65,
       "Error: Input past end of file\n", "hifx: report: " + damaged + ": " + damage + "\n"},
#endif
  };
  for (const Case& c : cases) {
    const auto run = Hifx(c.args);
    const std::string err = WithoutSummary(run.err);
    EXPECT_EQ(run.status, c.status) << c.args[0] << ": " << run.err;
    EXPECT_NE((run.out + err).find(c.system), std::string::npos) << c.args[0] << ": " << run.out << run.err;
    EXPECT_EQ(err.substr(err.size() - std::min(err.size(), c.said.size())), c.said) << c.args[0] << ": " << run.err;
  }
}

// A map is named with or without its extension wherever one is named; the
// extension of another kind of map is refused before anything runs.
TEST_F(Scripting, AMapIsNamedWithOrWithoutItsExtension) {
  int run = 0;  // a destination each, apart also where names ignore case
  for (const char* map : {"Billing", "Billing.hcm", "Billing.HCM"}) {
    const std::string dest = (dir / ("map" + std::to_string(++run) + ".pdb")).string();
    const auto r = Hifx({"route", "--map", map, "--dest", dest, "--source", kExamples + "route-fixed.txt"});
    EXPECT_EQ(r.status, 0) << map << r.out;
    EXPECT_NE(r.out.find("Using Map: Billing\n"), std::string::npos) << r.out;
  }
  const auto wrong = Hifx({"route", "--map", "Billing.hrm"});
  EXPECT_EQ(wrong.status, 64);
  EXPECT_EQ(wrong.err.substr(0, wrong.err.find('\n')), "hifx: --map Billing.hrm is a reading map; this takes a map of .hcm");
  EXPECT_EQ(Hifx({"check", "--map", "BillingCsv.hcm", kExamples + "route-delimited.csv"}).status, 0);

  EXPECT_EQ(Hifx({"map", "show", "Orphans"}).out, Hifx({"map", "show", "Orphans.hom"}).out);
  const auto several = Hifx({"map", "check", "Billing"});
  EXPECT_EQ(several.status, 64);
  EXPECT_EQ(several.err, "hifx: map: Billing names several maps (Billing.hcm, Billing.hrm); give the one meant "
                         "with its extension\n");
  EXPECT_EQ(Hifx({"map", "show", "Nothing"}).status, 66);

  ASSERT_EQ(Hifx({"settings", "set", "ReadingMap", "Billing.hrm"}).status, 0);
  EXPECT_EQ(Hifx({"settings", "get", "ReadingMap"}).out, "Billing\n");
  EXPECT_EQ(Hifx({"settings", "set", "OrphanMap", "Billing.hrm"}).status, 64);
}

// With no terminal and no --yes, the re-read question would be answered No
// after the billing file is written: the run stops before it writes.
TEST_F(Scripting, NoHalfARunWhereTheReReadQuestionCantBeAsked) {
  const std::string route = (dir / "route.pdb").string(), reading = (dir / "reading.pdb").string();
  ASSERT_EQ(Hifx({"route", "--dest", route, "--source", kExamples + "route-fixed.txt"}).status, 0);
  Fill(route, reading);
  const std::string billing = (dir / "billing.txt").string();
  for (const std::vector<std::string>& answer : {std::vector<std::string>{}, {"--no"}, {"--no-input"}}) {
    std::vector<std::string> args = answer;
    args.insert(args.end(), {"reading", "--source", reading, "--dest", billing, "--reread",
                             (dir / "reread.pdb").string()});
    const auto r = Hifx(args);
    EXPECT_EQ(r.status, 64);
    EXPECT_EQ(r.out, "");
    EXPECT_NE(r.err.find("nothing was written: give --yes to write the re-read file, or --no-reread"),
              std::string::npos)
        << r.err;
    EXPECT_FALSE(std::filesystem::exists(billing));
  }
  const auto without = Hifx({"reading", "--source", reading, "--dest", billing, "--no-reread", "--no-orphans"});
  EXPECT_EQ(without.status, 0) << without.out;
  EXPECT_TRUE(std::filesystem::exists(billing));
}

TEST_F(Scripting, VersionAndHelpFromTheSameDefinitions) {
  const auto version = Hifx({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_TRUE(std::regex_match(version.out, std::regex("hifx 3\\.0\nbuild .+\nwrites handheld files of version 3 "
                                                        "and map files of version 1\\.1\n")))
      << version.out;
  const auto help = Hifx({"help", "map", "show"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.out, Hifx({"map", "show", "--help"}).out);
  EXPECT_NE(help.out.find("usage: hifx map show NAME\n"), std::string::npos) << help.out;
  EXPECT_EQ(Hifx({"help"}).out, Hifx({"--help"}).out);
  const auto unknown = Hifx({"help", "frobnicate"});
  EXPECT_EQ(unknown.status, 64);
  EXPECT_EQ(unknown.err, "hifx: help: unknown command: frobnicate\n");
}

}  // namespace
}  // namespace hifx::test
