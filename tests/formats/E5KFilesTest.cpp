// E5000 download and upload files: every kind 80 columns, how lines are told
// apart (the "?" record takes the rest), and how upload lines are written.
// The columns of each kind are checked by the conversions' tests.
#include <gtest/gtest.h>

#include "base/Failure.h"
#include "formats/e5000/E5KCatalogue.h"
#include "formats/e5000/clsE5KDownload.h"
#include "formats/e5000/clsE5KUpload.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

TEST(E5KFiles, EveryKindIsEightyColumns) {
  for (const auto& catalogue : {E5KDownloadCatalogue(), E5KUploadCatalogue()}) {
    for (const auto& type : BuildRecordTypes(catalogue, nullptr)) EXPECT_EQ(type->RecLen(), 80) << type->IDText;
  }
}

TEST(E5KFiles, LinesAreToldApartByTheirLeadingColumns) {
  // line, kind, RecID as read
  const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
      {"FROUTE1", "F", "F"},       {"A", "A", "A"},       {"K01FRONT", "K01", "K01"}, {"K05", "K05", "K05"},
      {"K02FRONT", "?", "K"},      {"K1", "?", "K"},      {"K", "?", "K"},           {"ZROUTE1  0003", "Z", "Z"},
      {"aROUTE1", "?", "a"},       {"h01", "?", "h"},     {"", "?", ""},             {"?FILLER", "?", "?"},
      {"JOB 7", "?", "J"},         {"RREAD", "?", "R"},   {"LBEHIND SHED", "L", "L"}, {" A", "?", " "},
      {"I011000005", "I", "I"},    {"\x01\xff", "?", "\x01"}};
  TempDir dir;
  std::string text;
  for (const auto& c : cases) text += std::get<0>(c) + "\r\n";
  WriteBytes(dir / "route.txt", text);
  clsE5KDownload file;
  EXPECT_FALSE(file.OpenFile((dir / "missing.txt").string()));
  ASSERT_TRUE(file.OpenFile((dir / "route.txt").string()));
  for (size_t i = 0; i < cases.size(); ++i) {
    const clsRecType* record = file.ReadNext();
    ASSERT_NE(record, nullptr) << i;
    EXPECT_EQ(record->IDText, std::get<1>(cases[i])) << std::get<0>(cases[i]);
    EXPECT_EQ(record->GetValue("RecID"), Value(std::get<2>(cases[i]))) << std::get<0>(cases[i]);
    EXPECT_EQ(file.LineNo(), static_cast<int32_t>(i + 1));
  }
  EXPECT_EQ(file.ReadNext(), nullptr);

  WriteBytes(dir / "empty.txt", "");
  clsE5KDownload empty;
  ASSERT_TRUE(empty.OpenFile((dir / "empty.txt").string()));
  EXPECT_EQ(empty.ReadNext(), nullptr);
  EXPECT_EQ(empty.LineNo(), 0);
}

TEST(E5KFiles, UploadLinesAreEightyColumnsOfTheKindsItKnows) {
  TempDir dir;
  clsE5KUpload file;
  EXPECT_EQ(file.SetupRecord("H"), nullptr);
  EXPECT_EQ(file.SetupRecord("a"), nullptr);
  clsRecType* z = file.SetupRecord("Z");
  ASSERT_NE(z, nullptr);
  EXPECT_THROW(file.WriteRecord(*z), Failure);  // no file yet
  ASSERT_TRUE(file.CreateFile((dir / "upload.txt").string()));
  z->SetValue("Route", Value("ROUTE0001X"));  // cut to its 8 columns
  file.WriteRecord(*z);
  // Set up again, the kind starts with no values.
  file.WriteRecord(*file.SetupRecord("Z"));
  file = clsE5KUpload();  // closes the file
  EXPECT_EQ(ReadBytes(dir / "upload.txt"),
            "ZROUTE000" + std::string(71, ' ') + "\r\nZ" + std::string(79, ' ') + "\r\n");
  EXPECT_FALSE(clsE5KUpload().CreateFile((dir / "no" / "such" / "folder").string()));
}

}  // namespace
}  // namespace hifx::test
