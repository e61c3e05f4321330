// A site folder loaded from the bundled example site, and the command line
// run on it as a script would run it, with a fixed clock and time zone.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/RunHifx.h"
#include "support/TempDir.h"

namespace hifx::test {

inline const std::string kExamples = std::string(HIFX_TEST_SOURCE_DIR) + "/../examples/";
inline const std::string kTestData = std::string(HIFX_TEST_SOURCE_DIR) + "/data/";

class ExampleSite : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Hifx({"dist", "load", kExamples + "site.dst"}).status, 0); }

  RunResult Hifx(std::vector<std::string> args) {
    args.insert(args.begin(), {"--site", (dir / "site").string()});
    return RunHifx(args, dir, {{"SOURCE_DATE_EPOCH", "1700000000"}, {"TZ", "UTC"}});
  }

#ifdef HIFX_FILL_READINGS
  // The route HIF filled as a handheld fills it, from seed 1.
  void Fill(const std::filesystem::path& route, const std::filesystem::path& reading) {
    ASSERT_EQ(RunProgram(HIFX_FILL_READINGS, {route.string(), reading.string(), "--seed", "1"}, dir).status, 0);
  }
#endif

  TempDir dir;
};

}  // namespace hifx::test
