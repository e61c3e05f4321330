// The start-up both front ends share: where the site is, what is made on
// first use, and the exit code a failure ends a run with.
#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <set>

#include "app/Exit.h"
#include "app/Session.h"
#include "support/TempDir.h"
#include "support/TemporaryFolder.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

#ifndef _WIN32
TEST(Session, TheSiteFolderFollowsTheEnvironmentInItsOrder) {
  ScopedVariable site("HIFX_SITE", "/srv/site"), data("XDG_DATA_HOME", "/data"), home("HOME", "/home/clerk");
  EXPECT_EQ(app::DefaultSiteFolder(), "/srv/site");
  {
    ScopedVariable none("HIFX_SITE", "");
    EXPECT_EQ(app::DefaultSiteFolder(), "/data/hifexchange");
    ScopedVariable noData("XDG_DATA_HOME", "");
    EXPECT_EQ(app::DefaultSiteFolder(), "/home/clerk/.local/share/hifexchange");
  }
}

TEST(Session, ANewSiteFolderIsItsOwnersAloneAndHoldsTheSyncRoot) {
  TempDir dir;
  TestShell shell;
  ScopedVariable sync("HIFX_SYNC_ROOT", "");
  app::Session session(shell, dir / "new" / "site");
  EXPECT_FALSE(std::filesystem::exists(dir / "new"));  // nothing is made until it is used
  EXPECT_EQ(session.SyncRoot(), dir / "new" / "site" / "sync");
  EXPECT_EQ(std::filesystem::status(dir / "new" / "site").permissions() & std::filesystem::perms::all,
            std::filesystem::perms::owner_all);
}

TEST(Session, ADamagedStoreIsAFailureOfTheSite) {
  TempDir dir;
  TestShell shell;
  WriteBytes(dir / "registry.db", std::string(4096, 'x'));
  app::Session session(shell, dir.path());
  try {
    session.Exchange();
    FAIL() << "a damaged settings store was opened";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Kind(), FailureKind::BadSite);
    EXPECT_EQ(failure.File(), dir / "registry.db");
    EXPECT_EQ(app::ReportOf(failure).exitCode, app::kExitBadSite);
  }
}

TEST(Session, TheExchangeIsMadeOnceWithTheStoredSettings) {
  TempDir dir;
  TestShell shell;
  app::Session session(shell, dir.path());
  ASSERT_TRUE(session.Exchange().SaveParm("Route", "Map", "Water.hcm"));
  EXPECT_EQ(session.Exchange().RouteMap, "");  // the object of the run keeps what it loaded
  app::Session next(shell, dir.path());
  EXPECT_EQ(next.Exchange().RouteMap, "Water.hcm");
}
#endif

TEST(Session, AFailureEndsTheRunByItsKind) {
  EXPECT_EQ(app::ReportOf(WriteFailure(fail::kDiskFull, "Could not write", "out.txt", "No space left on device")).words,
            "Could not write out.txt: No space left on device");
  // One code a kind, none shared, and the codes the manual lists.
  std::set<int> codes;
  for (const FailureKind kind : {FailureKind::Run, FailureKind::Usage, FailureKind::BadInput, FailureKind::MissingInput,
                                 FailureKind::CantCreate, FailureKind::WriteFailed, FailureKind::BadSite}) {
    const int code = app::ExitCodeOf(kind);
    EXPECT_TRUE(codes.insert(code).second) << code;
    EXPECT_TRUE(std::any_of(std::begin(app::kExitCodes), std::end(app::kExitCodes),
                            [code](const app::ExitCode& e) { return e.code == code; }))
        << code;
  }
  EXPECT_EQ(app::ReportOf(std::bad_alloc()).exitCode, app::kExitNotComplete);
}

}  // namespace
}  // namespace hifx::test
