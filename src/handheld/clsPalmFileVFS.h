// The card-file container: records one after the other, each behind its
// length in four big-endian bytes. No header, no table, read in sequence.
// Records are written in batches of whole records.
#pragma once

#include "base/BinaryFile.h"
#include "base/FileWindow.h"
#include "handheld/IPalmFile.h"

namespace hifx {

class clsPalmFileVFS final : public IPalmFile {
 public:
  clsPalmFileVFS() = default;
  ~clsPalmFileVFS() override { CloseFile(); }

  bool TestFileType(const std::filesystem::path& fileName) override;
  int16_t CreateFile(const std::filesystem::path& fileName, std::string_view title,
                     std::string_view creator, std::string_view dbType, int32_t recordCount,
                     std::string& appInfo, std::string& sortInfo) override;
  void Rewind() override;
  bool WriteRecord(std::string_view data) override;
  int16_t OpenFile(const std::filesystem::path& fileName) override;
  int16_t RecordCount() override { return 0; }
  bool ReadRecord(int32_t& number, std::string& data) override;
  std::string Title() override { return {}; }
  std::string Creator() override { return {}; }
  std::string DBType() override { return {}; }
  std::string AppInfo() override { return {}; }
  std::string SortInfo() override { return {}; }
  double CreateDate() override { return 0.0; }
  double ModifyDate() override { return 0.0; }
  int16_t Attributes() override { return 0; }
  double BackupDate() override { return 0.0; }
  int16_t Position255() override;
  int FileHandle() override;
  int16_t CloseFile() override;
  void FinishFile() override;

 private:
  // Writes the records held back, in one go.
  void WritePending();

  BinaryFile writer_;
  uint64_t writePosition_ = 0;
  std::string pending_;     // records not yet written, in order
  uint64_t pendingAt_ = 0;  // where they go
  FileWindow file_;  // open while reading
  uint64_t readPosition_ = 0;
};

}  // namespace hifx
