#include <gtest/gtest.h>

#include "support/HifImage.h"
#include "support/RunHifx.h"
#include "support/SampleHif.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

class SortCommand : public testing::TestWithParam<int32_t> {
 protected:
  // The sample's records: file header, two route headers, three meters and
  // a skip code record.
  std::vector<std::string> Sample() {
    TestShell shell;
    return WriteSampleHif(shell, dir / "sample", GetParam());
  }
  void Write(const std::vector<std::string>& records) {
    TestShell shell;
    WriteRecords(shell, file, GetParam(), static_cast<int32_t>(records.size()), records);
  }

  TempDir dir;
  std::filesystem::path file = dir / "route.hif";
};

TEST_P(SortCommand, SortsTheFileInPlace) {
  const auto r = Sample();
  // Route 1's two meters the wrong way round.
  Write({r[0], r[1], r[2], r[4], r[3], r[5], r[6]});
  const auto run = RunHifx({"sort", file.string()}, dir);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(WithoutSummary(run.err), "Indexes would need to be rebuilt\n");
  // Meters in order, the skip codes gone, the table still of seven slots.
  EXPECT_EQ(ReadBytes(file), HifImage(GetParam(), 7, {r[0], r[1], r[2], r[3], r[4], r[5]}));
}

TEST_P(SortCommand, AFailurePartwayIsShownAndLeavesTheFile) {
  auto r = Sample();
  r[0][21] = 1;  // the header's PrvReading: one meter, where route 1 has two
  Write(r);
  const std::string before = ReadBytes(file);
  const auto run = RunHifx({"sort", file.string()}, dir);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(WithoutSummary(run.err), "Indexes would need to be rebuilt\nError: Subscript out of range\n");
  EXPECT_NE(run.err.find("hifx: sort: wrote nothing in "), std::string::npos) << run.err;
  EXPECT_EQ(ReadBytes(file), before);
}

INSTANTIATE_TEST_SUITE_P(Containers, SortCommand, testing::Values(kFilePDB, kFileVFS),
                         [](const testing::TestParamInfo<int32_t>& info) {
                           return info.param == kFilePDB ? std::string("PDB") : std::string("VFS");
                         });

TEST(SortCommandUse, AFileThatCannotBeRead) {
  TempDir dir;
  const auto missing = RunHifx({"sort", (dir / "missing.pdb").string()}, dir);
  EXPECT_EQ(missing.status, 66);
  EXPECT_EQ(missing.out, "Error: Could not read HIF file for sorting\n");
  EXPECT_EQ(WithoutSummary(missing.err), "Indexes would need to be rebuilt\nhifx: sort: " + (dir / "missing.pdb").string() + ": no such file\n");
  EXPECT_FALSE(std::filesystem::exists(dir / "missing.pdb"));

  std::filesystem::create_directory(dir / "folder.pdb");
  const auto folder = RunHifx({"sort", (dir / "folder.pdb").string()}, dir);
  EXPECT_EQ(folder.status, 65);
  EXPECT_EQ(WithoutSummary(folder.err),
            "Indexes would need to be rebuilt\nhifx: sort: " + (dir / "folder.pdb").string() +
                ": a folder, not a handheld file\n");
}

}  // namespace
}  // namespace hifx::test
