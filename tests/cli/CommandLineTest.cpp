// The command line's words: the usage lines made from the commands'
// definitions are the contract's words, every command has its help, and a
// command given wrongly is said in the command line's own words, exit 64.
#include <gtest/gtest.h>

#include "support/RunHifx.h"

namespace hifx::test {
namespace {

TEST(CommandLine, UsageLinesAreTheContractsWords) {
  TempDir dir;
  const struct {
    std::vector<std::string> args;
    std::string usage;
  } rows[] = {
      {{"--help"}, "usage: hifx [--site DIR] [--yes | --no] [--set FIELD=VALUE]... COMMAND [ARGS]"},
      {{"route", "--help"}, "usage: hifx route [--source F] [--dest F] [--map NAME] [--format PDB|PRC|VFS]"},
      {{"reading", "--help"},
       "usage: hifx reading [--source F] [--dest F] [--map NAME] [--orphans F] [--orphan-map NAME] "
       "[--orphan-replace | --orphan-append] [--reread F] [--no-orphans] [--no-reread]"},
      {{"settings", "--help"}, "usage: hifx settings [show | get NAME | set NAME VALUE]"},
      {{"view", "--help"}, "usage: hifx view FILE [--route N] [--csv]"},
      {{"install", "--help"}, "usage: hifx install FILE [--unit NAME]"},
      {{"map", "show", "--help"}, "usage: hifx map show NAME"},
      {{"report", "--help"},
       "usage: hifx report --type reading|exception|missed|orphan[,...] [--pdf OUT | --printer NAME | --png DIR] "
       "[--dpi N] [--title T] FILE"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.args[0]);
    const RunResult r = RunHifx(row.args, dir);
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find("\n" + row.usage + "\n"), std::string::npos) << r.out;
  }
}

TEST(CommandLine, EveryCommandHasItsHelp) {
  TempDir dir;
  for (const char* command : {"dump", "view", "sort", "map", "settings", "site", "dist", "registry", "users",
                              "install", "route", "reread", "reading", "report"}) {
    SCOPED_TRACE(command);
    const RunResult r = RunHifx({command, "--help"}, dir);
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find(std::string("usage: hifx ") + command), std::string::npos) << r.out;
    EXPECT_NE(RunHifx({"--help"}, dir).out.find(std::string("\n  ") + command + " "), std::string::npos);
  }
}

TEST(CommandLine, ACommandGivenWronglyIsSaidInItsOwnWords) {
  TempDir dir;
  const struct {
    std::vector<std::string> args;
    std::string first;
  } rows[] = {
      {{}, "hifx: no command"},
      {{"frobnicate"}, "hifx: unknown command: frobnicate"},
      {{"sort"}, "hifx: sort takes one FILE"},
      {{"sort", "a.pdb", "b.pdb"}, "hifx: sort takes one FILE"},
      {{"users", "extra"}, "hifx: users takes no arguments"},
      {{"settings", "set", "RouteMap"}, "hifx: settings set takes NAME VALUE"},
      {{"route", "--bogus"}, "hifx: unknown option: --bogus"},
      {{"route", "--format", "ZIP"}, "hifx: --format takes PDB, PRC or VFS"},
      {{"view", "x", "--route", "one"}, "hifx: --route takes N, not \"one\""},
      {{"--yes", "--no", "users"}, "hifx: --yes excludes --no"},
      {{"--site", "", "users"}, "hifx: --site needs a folder"},
      {{"--set", "Meter", "users"}, "hifx: --set needs FIELD=VALUE"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.first);
    const RunResult r = RunHifx(row.args, dir, {{"HIFX_SITE", (dir / "site").string()}});
    EXPECT_EQ(r.status, 64);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err.substr(0, r.err.find('\n')), row.first);
    EXPECT_NE(r.err.find("usage: hifx"), std::string::npos) << r.err;
  }
}

}  // namespace
}  // namespace hifx::test
