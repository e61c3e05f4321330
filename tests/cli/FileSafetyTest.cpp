// What a run must never do to the files a person has: write over one of its
// own inputs, write one output over another, or replace anything that is not
// a plain file. Each refusal names both files, exits 1 and touches nothing.
#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <fstream>

#include "support/ExampleSite.h"

namespace hifx::test {
namespace {

namespace fs = std::filesystem;

// Links where the platform lets a test make them (Windows may not).
bool SymbolicLink(const fs::path& target, const fs::path& link) {
  std::error_code ec;
  fs::create_symlink(target, link, ec);
  return !ec;
}

class FileSafety : public ExampleSite {
 protected:
  void SetUp() override {
    ExampleSite::SetUp();
    fs::copy_file(kExamples + "reading.pdb", reading);
    fs::copy_file(kExamples + "route-fixed.txt", route);
  }

  // A reading run with every output named; the one under test replaced.
  RunResult Reading(const std::string& option, const fs::path& name) {
    std::vector<std::string> args{"--yes", "reading", "--source", reading.string()};
    for (const auto& [o, file] : {std::pair{"--dest", "billing.txt"}, std::pair{"--orphans", "orphans.txt"},
                                  std::pair{"--reread", "reread.pdb"}}) {
      args.insert(args.end(), {o, o == option ? name.string() : (dir / file).string()});
    }
    return Hifx(args);
  }

  fs::path reading = dir / "reading.pdb";
  fs::path route = dir / "route.txt";
};

TEST_F(FileSafety, NoReadingOutputIsTheReadingFileByAnyName) {
  const std::string before = ReadBytes(reading);
  std::vector<fs::path> names{reading, dir / "." / "reading.pdb"};
  if (SymbolicLink(reading, dir / "link.pdb")) names.push_back(dir / "link.pdb");
  std::error_code ec;
  fs::create_hard_link(reading, dir / "hard.pdb", ec);
  if (!ec) names.push_back(dir / "hard.pdb");
  for (const char* option : {"--dest", "--orphans", "--reread"}) {
    for (const fs::path& name : names) {
      const auto r = Reading(option, name);
      EXPECT_EQ(r.status, 1) << option << " " << name;
      const std::string role = std::string(option) == "--dest"      ? "Reading Destination "
                               : std::string(option) == "--orphans" ? "Orphan Destination "
                                                                    : "Re-Read Destination ";
      EXPECT_NE(r.out.find("Error: " + role + name.string() + " is the same file as Reading Source " +
                           reading.string() + "\n"),
                std::string::npos)
          << r.out;
      EXPECT_EQ(ReadBytes(reading), before);
      EXPECT_FALSE(fs::exists(dir / "billing.txt"));
    }
  }
}

TEST_F(FileSafety, TwoOutputsOfOneRunAreNeverOneFile) {
  const auto r = Reading("--orphans", dir / "billing.txt");
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.out.find("Error: Orphan Destination " + (dir / "billing.txt").string() +
                       " is the same file as Reading Destination " + (dir / "billing.txt").string() + "\n"),
            std::string::npos)
      << r.out;
  // A name that doesn't exist yet is compared through its links.
  if (!SymbolicLink(dir / "later.pdb", dir / "dangling.pdb")) return;
  const auto l = Hifx({"--yes", "reading", "--source", reading.string(), "--dest", (dir / "later.pdb").string(),
                       "--no-orphans", "--reread", (dir / "dangling.pdb").string()});
  EXPECT_EQ(l.status, 1);
  EXPECT_NE(l.out.find("is the same file as Reading Destination"), std::string::npos) << l.out;
  EXPECT_FALSE(fs::exists(dir / "later.pdb"));
}

TEST_F(FileSafety, ARouteIsNeverWrittenOverItsSourceOrItsMap) {
  const std::string before = ReadBytes(route);
  std::vector<fs::path> names{route};
  if (SymbolicLink(route, dir / "link.txt")) names.push_back(dir / "link.txt");
  for (const fs::path& name : names) {
    const auto r = Hifx({"--yes", "route", "--source", route.string(), "--dest", name.string()});
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.out.find("Error: Route Destination " + name.string() + " is the same file as Route Source " +
                         route.string() + "\n"),
              std::string::npos)
        << r.out;
    EXPECT_EQ(ReadBytes(route), before);
  }
  // The same names stored in the settings are refused the same way.
  ASSERT_EQ(Hifx({"settings", "set", "RouteSource", route.string()}).status, 0);
  ASSERT_EQ(Hifx({"settings", "set", "RouteDestination", route.string()}).status, 0);
  EXPECT_EQ(Hifx({"--yes", "route"}).status, 1);
  EXPECT_EQ(ReadBytes(route), before);
  // The map the run reads is one of its inputs too.
  const fs::path map = dir / "site" / "Billing.hcm";
  const std::string mapBefore = ReadBytes(map);
  ASSERT_FALSE(mapBefore.empty());
  const auto m = Hifx({"--yes", "route", "--source", route.string(), "--dest", map.string(), "--map", "Billing"});
  EXPECT_EQ(m.status, 1);
  EXPECT_NE(m.out.find(" is the same file as Route Conversion Map "), std::string::npos) << m.out;
  EXPECT_EQ(ReadBytes(map), mapBefore);
}

#ifndef _WIN32
TEST_F(FileSafety, OnlyPlainFilesAreReplaced) {
  ASSERT_EQ(mkfifo((dir / "fifo").c_str(), 0600), 0);
  const auto r = Hifx({"--yes", "route", "--source", route.string(), "--dest", (dir / "fifo").string()});
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.out.find("Error: Route Destination " + (dir / "fifo").string() + " is not a plain file\n"),
            std::string::npos)
      << r.out;
  EXPECT_TRUE(fs::is_fifo(dir / "fifo"));
  // A pipe as the billing file would block the run for ever.
  for (const char* option : {"--dest", "--orphans", "--reread"}) {
    EXPECT_EQ(Reading(option, dir / "fifo").status, 1) << option;
    EXPECT_TRUE(fs::is_fifo(dir / "fifo"));
  }
  fs::create_directory(dir / "folder");
  EXPECT_EQ(Hifx({"--yes", "route", "--source", route.string(), "--dest", (dir / "folder").string()}).status, 1);
  EXPECT_TRUE(fs::is_directory(dir / "folder"));
}
#endif

// A route too big for one handheld file is refused before a file is made.
TEST_F(FileSafety, ARouteBeyondTheRecordLimitIsRefusedWithNoFile) {
  const std::string line = ReadBytes(route).substr(0, ReadBytes(route).find("\r\n") + 2);
  std::string big;
  for (int i = 0; i < 33000; ++i) big += line;
  WriteBytes(dir / "big.txt", big);
  const auto r = Hifx({"--yes", "route", "--source", (dir / "big.txt").string(), "--dest", (dir / "big.pdb").string()});
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.out.find("Error: The route needs at least 33003 records; a handheld file holds at most 32767\n"),
            std::string::npos)
      << r.out;
  EXPECT_FALSE(fs::exists(dir / "big.pdb"));
}

TEST_F(FileSafety, AMapIsNamedNeverPathed) {
  fs::copy_file(dir / "site" / "Billing.hcm", dir / "Outside.hcm");
  const auto r = Hifx({"--yes", "route", "--source", route.string(), "--dest", (dir / "r.pdb").string(), "--map",
                       "../Outside"});
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.out.find("Error: Could not load Route Conversion Map\n"), std::string::npos) << r.out;
  EXPECT_EQ(RunHifx({"--site", "", "settings"}, dir).status, 64);
}

#ifndef _WIN32
// A real limit on the size of the files a process may write, as a full disk
// refuses a write: the run fails with the file's name, the old files stay.
TEST_F(FileSafety, AFileSizeLimitFailsTheRunAndKeepsTheOldFiles) {
  const auto limited = [&](int kilobytes, std::vector<std::string> args) {
    args.insert(args.begin(), {"-c", "trap '' XFSZ; ulimit -f " + std::to_string(kilobytes) + "; exec \"$0\" \"$@\"",
                               HIFX_BINARY, "--site", (dir / "site").string()});
    return RunProgram("/bin/bash", args, dir);
  };
  WriteBytes(dir / "route.pdb", "OLD ROUTE");
  // Two thousand meters make a file of over 300 KB: it can't be written in 64.
  const std::string line = ReadBytes(route).substr(0, ReadBytes(route).find("\r\n") + 2);
  std::string big;
  for (int i = 0; i < 2000; ++i) {
    char tag[9];
    std::snprintf(tag, sizeof tag, "%08d", 1000000 + i);
    big += line.substr(0, 10) + tag + line.substr(18);
  }
  WriteBytes(dir / "big.txt", big);
  const auto r = limited(64, {"--yes", "route", "--source", (dir / "big.txt").string(), "--dest",
                              (dir / "route.pdb").string()});
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.err.find("route.pdb"), std::string::npos) << r.out << r.err;
  EXPECT_NE(r.err.find(": File too large"), std::string::npos) << r.err;
  EXPECT_TRUE(ReadBytes(dir / "route.pdb") == "OLD ROUTE");
  // Standard output is written as a file is: a dump that can't all reach it
  // fails the run, with nothing else wrong.
  ASSERT_EQ(Hifx({"route", "--source", (dir / "big.txt").string(), "--dest", (dir / "big.pdb").string()}).status, 0);
  const auto o = limited(16, {"dump", (dir / "big.pdb").string()});
  EXPECT_EQ(o.status, 74);
  EXPECT_EQ(o.err, "hifx: dump: Could not write standard output: File too large\n");
  // Where the settings can't even be opened for writing, the run says so by
  // the file's name and the setting stays as it was.
  ASSERT_EQ(Hifx({"settings", "set", "RouteMap", "Before"}).status, 0);
  const auto s = limited(16, {"settings", "set", "RouteMap", "After"});
  EXPECT_EQ(s.status, 78);
  EXPECT_NE(s.err.find("registry.db: cannot read the settings database"), std::string::npos) << s.err;
  EXPECT_EQ(Hifx({"settings", "get", "RouteMap"}).out, "Before\n");
  // A distribution load whose settings can't all be written says how many
  // were lost and is not called loaded.
  const auto d = RunProgram("/bin/bash",
                            {"-c", "trap '' XFSZ; ulimit -f 64; exec \"$0\" \"$@\"", HIFX_BINARY, "--site",
                             (dir / "fresh").string(), "dist", "load", kExamples + "site.dst"},
                            dir);
  EXPECT_EQ(d.status, 1);
  EXPECT_NE(d.err.find(" settings of " + kExamples + "site.dst could not be saved\n"), std::string::npos) << d.err;
  for (const auto& entry : fs::directory_iterator(dir.path())) {
    EXPECT_NE(entry.path().filename().string().front(), '.') << entry.path();
  }
}

#if !defined(HIFX_SANITIZED)  // the sanitizer's own memory needs no limit
// Running out of memory is said, with a non-zero exit, and costs no file.
TEST_F(FileSafety, RunningOutOfMemoryIsSaidAndCostsNoFile) {
  // A reading file whose one record is 200 MB, which 150 MB of memory can't
  // hold: a header, a count of one and the record's slot at byte 86.
  {
    std::string head(86, '\0');
    head.replace(0, 8, "RouteHIF");
    head[77] = 1;
    head[81] = 86;
    std::ofstream(dir / "huge.pdb", std::ios::binary) << head;
  }
  fs::resize_file(dir / "huge.pdb", 200u << 20);
  WriteBytes(dir / "billing.txt", "OLD BILLING");
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"dump", (dir / "huge.pdb").string()},
        {"--yes", "reading", "--source", (dir / "huge.pdb").string(), "--dest", (dir / "billing.txt").string(),
         "--no-orphans", "--no-reread"}}) {
    std::vector<std::string> args{"-c", "ulimit -v 150000; exec \"$0\" \"$@\"", HIFX_BINARY, "--site",
                                  (dir / "site").string()};
    args.insert(args.end(), command.begin(), command.end());
    const auto r = RunProgram("/bin/bash", args, dir);
    EXPECT_TRUE(r.exited) << command[0];
    EXPECT_EQ(r.status, 1) << command[0] << r.err;
    EXPECT_NE(r.err.find("not enough memory to go on"), std::string::npos) << r.err;
  }
  EXPECT_EQ(ReadBytes(dir / "billing.txt"), "OLD BILLING");
}
#endif

TEST_F(FileSafety, TheSitesSecretsAreItsOwnersAlone) {
  const auto mode = [](const fs::path& p) { return fs::status(p).permissions() & fs::perms::all; };
  EXPECT_EQ(mode(dir / "site"), fs::perms::owner_all);
  EXPECT_EQ(mode(dir / "site" / "registry.db"), fs::perms::owner_read | fs::perms::owner_write);
  ASSERT_EQ(Hifx({"dist", "write", (dir / "copy.dst").string()}).status, 0);
  EXPECT_EQ(mode(dir / "copy.dst"), fs::perms::owner_read | fs::perms::owner_write);
  // A registry left readable by others is tightened when next opened.
  fs::permissions(dir / "site" / "registry.db", fs::perms::group_read | fs::perms::others_read, fs::perm_options::add);
  ASSERT_EQ(Hifx({"settings"}).status, 0);
  EXPECT_EQ(mode(dir / "site" / "registry.db"), fs::perms::owner_read | fs::perms::owner_write);
}
#endif

}  // namespace
}  // namespace hifx::test
