// MVRS route and reading files: the catalogues' widths and columns, how
// lines are recognised, and how reading lines are written.
#include <gtest/gtest.h>

#include <map>

#include "base/DateSerial.h"
#include "formats/mvrs/MVRSCatalogue.h"
#include "formats/mvrs/clsMVRSDownload.h"
#include "formats/mvrs/clsMVRSUpload.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

std::map<std::string, int> Widths(const std::vector<RecordLayout>& catalogue) {
  std::map<std::string, int> widths;
  for (const auto& type : BuildRecordTypes(catalogue, nullptr)) widths[type->IDText] = type->RecLen();
  return widths;
}

TEST(MVRSFiles, CatalogueWidths) {
  const std::map<std::string, int> download = {
      {"FHD", 18},  {"FTR", 18}, {"???", 93}, {"CHD", 17},  {"CTR", 17},  {"RHD", 86},  {"RTR", 86},
      {"ERH", 97},  {"ERT", 97}, {"RTS", 91}, {"RTM", 111}, {"CUS", 125}, {"CSX", 71},  {"MTR", 112},
      {"MTS", 123}, {"RDG", 95}, {"PRB", 126}, {"RFF", 68}, {"WRR", 38}};
  EXPECT_EQ(Widths(MVRSDownloadCatalogue()), download);
  const std::map<std::string, int> upload = {
      {"FHD", 126}, {"FTR", 126}, {"RHD", 117}, {"RTR", 117}, {"ERH", 128}, {"ERT", 128}, {"RTS", 91},
      {"RTM", 111}, {"RMR", 119}, {"CUS", 126}, {"CSX", 91},  {"MTR", 121}, {"MTC", 87},  {"MTS", 123},
      {"MTM", 63},  {"RDG", 115}, {"PRB", 123}, {"RFF", 95},  {"WRR", 95}};
  EXPECT_EQ(Widths(MVRSUploadCatalogue()), upload);
}

TEST(MVRSFiles, ReadsLinesByKindUntilAnUnknownOne) {
  TempDir dir;
  const auto path = dir / "route.dat";
  WriteBytes(path,
                   "FHD         01   \r\n"
                   "???ABCDEFirst            \r\n"
                   "CHD010002031426\r\n"
                   "MTR00000001001  X\r\n"
                   "rhd00000002\r\n"
                   "RHD00000003\r\n");
  clsMVRSDownload file;
  EXPECT_FALSE(file.OpenFile((dir / "missing").string()));
  ASSERT_TRUE(file.OpenFile(path.string()));
  clsRecType* record = file.ReadNext();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->IDText, "FHD");
  EXPECT_EQ(record->GetValue("NumberCycles"), Value::Long(1));
  record = file.ReadNext();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->IDText, "???");
  EXPECT_EQ(record->GetValue("Translate1"), Value("First            "));
  record = file.ReadNext();
  EXPECT_EQ(record->GetValue("NumberRoutes"), Value::Long(2));
  // A year cut short by the line's end reads as a two-digit one.
  EXPECT_EQ(record->GetValue("CycleDate"), Value::Date(DateSerial(2026, 3, 14)));
  record = file.ReadNext();
  EXPECT_EQ(record->GetValue("RouteNumber"), Value("00000001"));
  EXPECT_EQ(record->GetValue("NumberReadings"), Value::Long(1));
  EXPECT_EQ(record->GetValue("MeterNumber"), Value(""));
  EXPECT_EQ(file.ReadNext(), nullptr);  // lower case: the end of the reading
  EXPECT_EQ(file.LineNo(), 5);

  WriteBytes(path, "");
  clsMVRSDownload empty;
  ASSERT_TRUE(empty.OpenFile(path.string()));
  EXPECT_EQ(empty.ReadNext(), nullptr);
  EXPECT_EQ(empty.Position255(), 0);
}

TEST(MVRSFiles, WritesPaddedLinesOfTheKindsItKnows) {
  TempDir dir;
  const auto path = dir / "reading.dat";
  clsMVRSUpload file;
  EXPECT_EQ(file.SetupRecord("MTM"), nullptr);
  EXPECT_EQ(file.SetupRecord("CHD"), nullptr);
  EXPECT_EQ(file.SetupRecord("rhd"), nullptr);
  clsRecType* rhd = file.SetupRecord("RHD");
  ASSERT_NE(rhd, nullptr);
  EXPECT_THROW(file.WriteRecord(*rhd), Failure);  // no file yet
  ASSERT_TRUE(file.CreateFile(path.string()));
  rhd->SetValue("RouteNumber", Value("R1"));
  rhd->SetValue("TimeUsedtoReadRoute", Value::Long(0));
  EXPECT_FALSE(file.WriteRecord(*rhd));
  clsRecType* erh = file.SetupRecord("ERH");
  erh->SetValue("TypeRoute", Value("X"));
  file.WriteRecord(*erh);
  file.SetupRecord("FTR");
  file.WriteRecord(*file.SetupRecord("FTR"));
  file = clsMVRSUpload();  // closes the file

  const std::string rhdLine = "RHDR1      " + std::string(34, ' ') + "0     " + std::string(126 - 51, ' ');
  const std::string erhLine = "ERH" + std::string(124, ' ') + "X";
  const std::string ftrLine = "FTR" + std::string(123, ' ');
  EXPECT_EQ(ReadBytes(path), rhdLine + "\r\n" + erhLine + "\r\n" + ftrLine + "\r\n");

  TestShell shell;
  clsMVRSUpload nowhere(&shell);
  EXPECT_FALSE(nowhere.CreateFile((dir / "no" / "such" / "folder").string()));
  EXPECT_EQ(shell.questions.size(), 1u);
}

}  // namespace
}  // namespace hifx::test
