// The Palm record database container: a 78-byte header, a record table laid
// out in full before the first record, and the records' bytes one after the
// other. Records go to disk in batches, each followed by its table slots and
// the count, so a file is well formed after each batch.
#pragma once

#include <array>
#include <vector>

#include "base/BinaryFile.h"
#include "base/FileWindow.h"
#include "handheld/IPalmFile.h"

namespace hifx {

class clsPalmFilePDB final : public IPalmFile {
 public:
  static constexpr int kHeaderSize = 72;
  static constexpr int kTableStart = 78;
  static constexpr int kSlotSize = 8;
  static constexpr int32_t kDefaultSlots = 999;

  clsPalmFilePDB() = default;
  ~clsPalmFilePDB() override { CloseFile(); }

  bool TestFileType(const std::filesystem::path& fileName) override;
  int16_t CreateFile(const std::filesystem::path& fileName, std::string_view title,
                     std::string_view creator, std::string_view dbType, int32_t recordCount,
                     std::string& appInfo, std::string& sortInfo) override;
  void Rewind() override;
  bool WriteRecord(std::string_view data) override;
  int16_t OpenFile(const std::filesystem::path& fileName) override;
  int16_t RecordCount() override;
  bool ReadRecord(int32_t& number, std::string& data) override;
  std::string Title() override;
  std::string Creator() override;
  std::string DBType() override;
  std::string AppInfo() override;
  std::string SortInfo() override;
  double CreateDate() override;
  double ModifyDate() override;
  int16_t Attributes() override;
  double BackupDate() override;
  int16_t Position255() override;
  int FileHandle() override;
  int16_t CloseFile() override;
  void FinishFile() override;

 private:
  int32_t StoredCount() const;  // the two count bytes, decoded at each use
  int32_t SlotOffset(size_t slot) const;
  double DateField(int offset) const;
  std::string BlockAt(int32_t start, int32_t end);
  void OpenForReading(const std::filesystem::path& fileName);
  // Writes bytes of the header or table, in place where they are mapped.
  void PutHead(uint64_t offset, const uint8_t* bytes, size_t size);
  // Writes the records held back, then their slots and the count.
  void WritePending();

  std::array<uint8_t, kHeaderSize> header_{};
  std::array<uint8_t, 6> countBlock_{};  // next record list ID and record count
  std::vector<uint8_t> table_;           // slots 0 to N, slot N holding the end offset
  BinaryFile writer_;                    // open while writing
  uint8_t* head_ = nullptr;              // the header and table, mapped while writing
  std::string pending_;                  // records not yet written, in order
  int32_t onDisk_ = 0;                   // records the table on disk describes
  FileWindow file_;                      // open while reading
  int16_t position_ = 0;
};

}  // namespace hifx
