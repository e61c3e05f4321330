#include <gtest/gtest.h>

#include "hif/FileVersion.h"
#include "hif/clsHIF.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

// Offsets of the fixed part in versions 0 to 3; -1 where the field is absent.
struct OffsetRow {
  const char* name;
  int32_t type;
  int offsets[4];
};

const OffsetRow kOffsets[] = {
    {"RecType", kFieldInt16, {0, 0, 0, 0}},
    {"RouteNbr", kFieldInt32, {2, 2, 2, 2}},
    {"Sequence", kFieldInt32, {6, 6, 6, 6}},
    {"MeterTagNbr", kFieldInt32, {10, 10, 10, 10}},
    {"MeterType", kFieldInt8, {14, 14, 14, 14}},
    {"Digits", kFieldInt8, {-1, 15, 15, 15}},
    {"Decimals", kFieldInt8, {-1, -1, 16, 16}},
    {"Reserved1", kFieldInt8, {-1, -1, 17, 17}},
    {"PrvReading", kFieldInt32, {-1, 16, 18, 18}},
    {"MaxReading", kFieldInt32, {-1, 20, 22, 22}},
    {"MinReading", kFieldInt32, {-1, 24, 26, 26}},
    {"CurReading", kFieldInt32, {-1, 28, 30, 30}},
    {"ReadingDate", kFieldInt32, {-1, 32, 34, 34}},
    {"ReadingTime", kFieldInt32, {-1, 36, 38, 38}},
    {"Status", kFieldInt8, {-1, 40, 42, 42}},
    {"ReadType", kFieldInt8, {-1, 41, 43, 43}},
    {"ResponseCode", kFieldInt16, {-1, 42, 44, 44}},
    {"LstReadingDate", kFieldInt32, {-1, 44, 46, 46}},
    {"TamperCount", kFieldInt16, {-1, 48, 50, 50}},
    {"UtilityCode", kFieldInt8, {-1, 50, 52, 52}},
    {"Signal", kFieldInt8, {-1, 51, 53, 53}},
    {"Lat", kFieldInt32, {-1, 52, 54, 54}},
    {"Lng", kFieldInt32, {-1, 56, 58, 58}},
    {"ScaleFactor", kFieldInt32, {-1, 60, 62, 62}},
    {"InitReading", kFieldInt32, {-1, 64, 66, 66}},
    {"InitPulseCount", kFieldInt32, {-1, -1, -1, 70}},
    {"InitTamperCount", kFieldInt16, {-1, -1, -1, 74}},
};

class SchemaVersionTest : public testing::TestWithParam<int16_t> {};

TEST_P(SchemaVersionTest, FixedPartMatchesTheLayout) {
  const int16_t version = GetParam();
  TestShell shell;
  clsHIF hif(shell);
  hif.SetVersion(version);
  clsPalmDB& db = hif.DB();
  int numeric = 0;
  for (const OffsetRow& row : kOffsets) {
    const int16_t index = db.FindItem(row.name);
    if (row.offsets[version] < 0) {
      EXPECT_EQ(index, 0) << row.name << " in version " << version;
      continue;
    }
    ++numeric;
    ASSERT_NE(index, 0) << row.name << " in version " << version;
    EXPECT_EQ(db.Field(index).position, row.offsets[version]) << row.name;
    EXPECT_EQ(db.Field(index).type, row.type) << row.name;
    EXPECT_EQ(index, numeric) << row.name << " out of order";
  }
  const int fixed[] = {15, 68, 70, 76};
  EXPECT_EQ(db.FixedLength(), fixed[version]);
  EXPECT_EQ(db.TextCount(), version == 0 ? 0 : 13);
  EXPECT_EQ(db.FieldCount(), numeric + db.TextCount());
  hif.AddNew();
  EXPECT_EQ(hif.RawData(), std::string(static_cast<size_t>(fixed[version] + db.TextCount()), '\0'));
}

INSTANTIATE_TEST_SUITE_P(Versions, SchemaVersionTest, testing::Values(0, 1, 2, 3),
                         [](const auto& info) { return "Version" + std::to_string(info.param); });

TEST(Schema, TextsFollowInTheirOrderAndLaterVersionsGiveThree) {
  TestShell shell;
  clsHIF hif(shell);
  hif.SetVersion(9);
  EXPECT_EQ(hif.DB().FixedLength(), 76);
  const char* texts[] = {"Initials", "ResponseText", "Message", "ServiceAddress", "BillingName",
                         "ServiceUniqueID", "MeterSerialNbr", "ReceiverData", "User1", "User2",
                         "User3", "User4", "User5"};
  for (int k = 0; k < 13; ++k) {
    const int16_t index = hif.DB().FindItem(texts[k]);
    ASSERT_NE(index, 0) << texts[k];
    EXPECT_EQ(hif.DB().Field(index).type, kFieldText);
    EXPECT_EQ(hif.DB().Field(index).position, k + 1);
  }
}

TEST(Schema, FieldsOfLaterVersionsReadNullAndWriteIsRefused) {
  TestShell shell;
  clsHIF hif(shell);
  hif.SetVersion(1);
  hif.AddNew();
  EXPECT_TRUE(hif.Item("InitTamperCount").IsNull());
  hif.SetItem("InitTamperCount", Value::Long(1));
  EXPECT_EQ(shell.Asked(), std::vector<std::string>{"InitTamperCount not valid field in Record"});
}

// Known program versions give their file version; any other shows the
// message and gives 0.
TEST(LookupFileVersion, KnownAndUnknownProgramVersions) {
  for (const auto& [major, minor, version] :
       {std::tuple{1, 2, 1}, {1, 3, 2}, {1, 4, 3}, {1, 6, 3}, {int{kProgramMajor}, int{kProgramMinor}, 3},
        {1, 1, 0}, {2, 0, 0}, {3, 1, 0}, {1, 7, 0}}) {
    TestShell shell;
    EXPECT_EQ(LookupFileVersion(shell, static_cast<int16_t>(major), static_cast<int16_t>(minor)), version)
        << major << "." << minor;
    const Question contact{"Contact Support - cannot determine internal file version from this version of "
                           "Tally Converter Utility", "", MsgButtons::OK};
    EXPECT_EQ(shell.questions, version ? std::vector<Question>{} : std::vector<Question>{contact});
  }
}

}  // namespace
}  // namespace hifx::test
