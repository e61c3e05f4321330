#include <gtest/gtest.h>

#include "base/Failure.h"
#include "base/LineReader.h"
#include "support/TempDir.h"

namespace hifx::test {
namespace {

std::vector<std::string> LinesOf(const std::string& bytes) {
  TempDir dir;
  WriteBytes(dir / "f", bytes);
  LineReader reader(dir / "f");
  std::vector<std::string> lines;
  std::string line;
  while (reader.ReadLine(line)) lines.push_back(line);
  EXPECT_EQ(reader.Position(), bytes.size());
  return lines;
}

TEST(LineReader, EveryLineEndingAndNone) {
  EXPECT_EQ(LinesOf(""), std::vector<std::string>{});
  EXPECT_EQ(LinesOf("a\r\nb\nc\rd"), (std::vector<std::string>{"a", "b", "c", "d"}));
  EXPECT_EQ(LinesOf("\r\n\r\n"), (std::vector<std::string>{"", ""}));
  EXPECT_EQ(LinesOf("x\n\ry"), (std::vector<std::string>{"x", "", "y"}));
  EXPECT_EQ(LinesOf(std::string("n\0l\r\n", 5)), (std::vector<std::string>{std::string("n\0l", 3)}));
}

TEST(LineReader, EndingsAcrossTheReadBuffer) {
  // A CR LF split over two 64 KB reads is still one ending.
  for (const size_t first : {65535u, 65536u, 65537u, 131071u}) {
    const std::string a(first, 'a');
    const auto lines = LinesOf(a + "\r\nb\r\n");
    ASSERT_EQ(lines.size(), 2u) << first;
    EXPECT_EQ(lines[0].size(), first);
    EXPECT_EQ(lines[1], "b");
  }
}

TEST(LineReader, MissingFilesAndOverlongLines) {
  TempDir dir;
  EXPECT_THROW(LineReader(dir / "none"), Failure);
  EXPECT_THROW(LineReader(dir.path()), Failure);
  WriteBytes(dir / "long", std::string(LineReader::kMaxLine + 10, 'x'));
  LineReader reader(dir / "long");
  std::string line;
  EXPECT_THROW(reader.ReadLine(line), Failure);
}

}  // namespace
}  // namespace hifx::test
