#include <gtest/gtest.h>

#include <array>

#include "base/Failure.h"
#include "handheld/modPDB.h"
#include "support/FailureNumber.h"

namespace hifx::test {
namespace {

template <size_t N>
std::array<uint8_t, N> Put(const Value& v) {
  std::array<uint8_t, N> bytes{};
  bytes.fill(0xAA);
  PutBytes(bytes, v);
  return bytes;
}

TEST(BytesToLong, BigEndianWithTheTopBitGivingZero) {
  const std::array<uint8_t, 4> max{0x7F, 0xFF, 0xFF, 0xFF};
  const std::array<uint8_t, 4> top{0x80, 0x00, 0x00, 0x00};
  const std::array<uint8_t, 4> all{0xFF, 0xFF, 0xFF, 0xFF};
  const std::array<uint8_t, 2> word{0xFF, 0xFE};
  const std::array<uint8_t, 1> byte{0xC8};
  EXPECT_EQ(BytesToLong(max), 2147483647);
  EXPECT_EQ(BytesToLong(top), 0);
  EXPECT_EQ(BytesToLong(all), 0);
  EXPECT_EQ(BytesToLong(word), 65534);
  EXPECT_EQ(BytesToLong(byte), 200);
}

TEST(PutBytes, NumbersGoBigEndian) {
  EXPECT_EQ(Put<4>(Value::Long(0x01020304)), (std::array<uint8_t, 4>{1, 2, 3, 4}));
  EXPECT_EQ(Put<2>(Value::Long(0x0102)), (std::array<uint8_t, 2>{1, 2}));
  EXPECT_EQ(Put<2>(Value::Long(0x7F0102)), (std::array<uint8_t, 2>{1, 2}));
  EXPECT_EQ(Put<1>(Value::Long(0x1FF)), (std::array<uint8_t, 1>{0xFF}));
  EXPECT_EQ(Put<3>(Value::Long(0x0102)), (std::array<uint8_t, 3>{2, 0xAA, 0xAA}));
  // A fraction is rounded half to even first.
  EXPECT_EQ(Put<2>(Value::Double(2.5)), (std::array<uint8_t, 2>{0, 2}));
  EXPECT_EQ(Put<2>(Value::Double(3.5)), (std::array<uint8_t, 2>{0, 4}));
}

TEST(PutBytes, NegativeValuesKeepTheirUnmaskedTopByte) {
  EXPECT_EQ(Put<4>(Value::Long(-1)), (std::array<uint8_t, 4>{0, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(Put<4>(Value::Long(-16777215)), (std::array<uint8_t, 4>{0, 0, 0, 1}));
  EXPECT_EQ(Put<2>(Value::Long(-2)), (std::array<uint8_t, 2>{0xFF, 0xFE}));
  std::array<uint8_t, 4> bytes{};
  EXPECT_EQ(FailureNumber([&] { PutBytes(bytes, Value::Long(-16777216)); }), fail::kOverflow);
}

TEST(PutBytes, TextGoesByCharacterWhateverTheWidth) {
  EXPECT_EQ(Put<4>(Value("1231")), (std::array<uint8_t, 4>{'1', '2', '3', '1'}));
  EXPECT_EQ(Put<4>(Value("AB")), (std::array<uint8_t, 4>{'A', 'B', 0, 0}));
  EXPECT_EQ(Put<2>(Value("ABC")), (std::array<uint8_t, 2>{'A', 'B'}));
}

TEST(BytesToDecimalText, FirstDigitCodeOfEachByte) {
  const std::array<uint8_t, 1> d{68};
  EXPECT_EQ(BytesToDecimalText(d), "54");
  const std::array<uint8_t, 4> creator{'q', 'H', 'V', 'N'};
  EXPECT_EQ(BytesToDecimalText(creator), "49555655");
  const std::array<uint8_t, 2> zeros{0, 9};
  EXPECT_EQ(BytesToDecimalText(zeros), "4857");
}

}  // namespace
}  // namespace hifx::test
