// E5000 download and upload files: every kind 80 columns, how lines are told
// apart (the "?" record takes the rest), and how upload lines are written.
#include <gtest/gtest.h>

#include "base/Failure.h"
#include "formats/e5000/E5kCatalogue.h"
#include "formats/e5000/clsE5KDownload.h"
#include "formats/e5000/clsE5KUpload.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx {
namespace {

TEST(E5kFiles, EveryKindIsEightyColumns) {
  for (const auto& catalogue : {E5kDownloadCatalogue(), E5kUploadCatalogue()}) {
    for (const auto& type : BuildRecordTypes(catalogue, nullptr)) EXPECT_EQ(type->RecLen(), 80) << type->IDText;
  }
}

TEST(E5kFiles, LinesAreToldApartByTheirLeadingColumns) {
  // line, kind, RecID as read
  const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
      {"FROUTE1", "F", "F"},       {"A", "A", "A"},       {"K01FRONT", "K01", "K01"}, {"K05", "K05", "K05"},
      {"K02FRONT", "?", "K"},      {"K1", "?", "K"},      {"K", "?", "K"},           {"ZROUTE1  0003", "Z", "Z"},
      {"aROUTE1", "?", "a"},       {"h01", "?", "h"},     {"", "?", ""},             {"?FILLER", "?", "?"},
      {"JOB 7", "?", "J"},         {"RREAD", "?", "R"},   {"LBEHIND SHED", "L", "L"}, {" A", "?", " "},
      {"I011000005", "I", "I"},    {"\x01\xff", "?", "\x01"}};
  test::TempDir dir;
  std::string text;
  for (const auto& c : cases) text += std::get<0>(c) + "\r\n";
  test::WriteBytes(dir / "route.txt", text);
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

  test::WriteBytes(dir / "empty.txt", "");
  clsE5KDownload empty;
  ASSERT_TRUE(empty.OpenFile((dir / "empty.txt").string()));
  EXPECT_EQ(empty.ReadNext(), nullptr);
  EXPECT_EQ(empty.LineNo(), 0);
}

TEST(E5kFiles, AMeterLineReadsByItsColumns) {
  test::TempDir dir;
  test::WriteBytes(dir / "route.txt",
                   "H02SN5501    5000000120000500000021000G0000025NM0212ASDREF00003 tail\r\n"
                   "I01 77A\r\n");
  clsE5KDownload file;
  ASSERT_TRUE(file.OpenFile((dir / "route.txt").string()));
  const clsRecType* h = file.ReadNext();
  ASSERT_NE(h, nullptr);
  EXPECT_EQ(h->GetValue("RelativeMeterNumber"), Value("02"));
  EXPECT_EQ(h->GetValue("MeterSerialNumber"), Value("SN5501    "));
  EXPECT_EQ(h->GetValue("NumberofDials"), Value::Long(5));
  EXPECT_EQ(h->GetValue("MinimumRead"), Value::Long(12));
  EXPECT_EQ(h->GetValue("MaximumRead"), Value::Long(5000));
  EXPECT_EQ(h->GetValue("PriorRead"), Value::Long(21000));
  EXPECT_EQ(h->GetValue("MeterType"), Value("G"));
  EXPECT_EQ(h->GetValue("MeterSize"), Value::Long(25));
  EXPECT_EQ(h->GetValue("MeterMake"), Value("NM"));
  EXPECT_EQ(h->GetValue("DisplayCode"), Value("02"));
  EXPECT_EQ(h->GetValue("NoDecimals"), Value::Long(1));
  EXPECT_EQ(h->GetValue("MustReadFlag"), Value::Long(2));
  EXPECT_EQ(h->GetValue("MeterLocation"), Value("SD"));
  EXPECT_EQ(h->GetValue("MeterReference"), Value("REF00003"));
  EXPECT_EQ(h->GetValue("Filler"), Value(" tail"));
  // A short line: what it lacks reads as empty text and zeros.
  const clsRecType* i = file.ReadNext();
  ASSERT_NE(i, nullptr);
  EXPECT_EQ(i->IDText, "I");
  EXPECT_EQ(i->GetValue("MeterSerialNumber"), Value(" 77A"));
  EXPECT_EQ(i->GetValue("NumberofDials"), Value::Long(0));
  EXPECT_EQ(i->GetValue("MeterType"), Value(""));
}

TEST(E5kFiles, UploadLinesAreEightyColumnsOfTheKindsItKnows) {
  test::TempDir dir;
  clsE5KUpload file;
  EXPECT_EQ(file.SetupRecord("H"), nullptr);
  EXPECT_EQ(file.SetupRecord("a"), nullptr);
  ASSERT_NE(file.SetupRecord("M"), nullptr);
  clsRecType* a = file.SetupRecord("A");
  ASSERT_NE(a, nullptr);
  EXPECT_THROW(file.WriteRecord(*a), Failure);  // no file yet
  ASSERT_TRUE(file.CreateFile((dir / "upload.txt").string()));
  a->SetValue("Route", Value("ROUTE0001X"));  // cut to its 8 columns
  a->SetValue("NoofAccounts", Value::Long(12));
  a->SetValue("NoofMeters", Value::Long(123456));  // too wide: the left digits stay
  a->SetValue("ReadDate", Value("240305"));
  a->SetValue("ResequenceFlag", Value("0"));
  file.WriteRecord(*a);
  // Set up again, the kind starts with no values.
  file.WriteRecord(*file.SetupRecord("A"));
  file.WriteRecord(*file.SetupRecord("Z"));
  file = clsE5KUpload();  // closes the file

  // Fields given no value stay blank.
  const std::string first = "AROUTE00000121234   240305            0" + std::string(41, ' ');
  const std::string second = "A" + std::string(79, ' ');
  const std::string third = "Z" + std::string(79, ' ');
  ASSERT_EQ(first.size(), 80u);
  EXPECT_EQ(test::ReadBytes(dir / "upload.txt"), first + "\r\n" + second + "\r\n" + third + "\r\n");

  EXPECT_FALSE(clsE5KUpload().CreateFile((dir / "no" / "such" / "folder").string()));
}

}  // namespace
}  // namespace hifx
