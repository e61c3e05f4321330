#include <gtest/gtest.h>

#include "base/FileNames.h"

namespace hifx::test {
namespace {

// Settings written on a Windows desk name files with "\", others with "/":
// both are read the same on every platform.
TEST(FileNames, EitherSeparatorEndsTheFolder) {
  EXPECT_EQ(FileNamePart("C:\\in\\route.txt"), "route.txt");
  EXPECT_EQ(FileNamePart("in/route.txt"), "route.txt");
  EXPECT_EQ(FileNamePart("in\\sub/route.txt"), "route.txt");
  EXPECT_EQ(FileNamePart("route.txt"), "route.txt");
  EXPECT_EQ(FileNamePart("in\\"), "");
  EXPECT_TRUE(HasFolderPart("in\\route.txt"));
  EXPECT_TRUE(HasFolderPart("/route.txt"));
  EXPECT_FALSE(HasFolderPart("HALVERNLINK.PRC"));
}

}  // namespace
}  // namespace hifx::test
