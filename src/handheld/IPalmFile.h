// The one interface through which a handheld database file is read and
// written. Two containers stand behind it: the Palm record database
// (clsPalmFilePDB) and a plain stream of length-prefixed records
// (clsPalmFileVFS). Only clsPalmDB calls it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace hifx {

// Bytes of records a container holds before it writes them in one go.
inline constexpr size_t kWriteBatchBytes = 256 * 1024;

// The most records a handheld file holds: its readers walk the record table
// with a 16-bit counter.
inline constexpr int32_t kMaxRecords = 32767;

class IPalmFile {
 public:
  virtual ~IPalmFile() = default;

  // True when this container can handle the file.
  virtual bool TestFileType(const std::filesystem::path& fileName) = 0;
  // Creates the file; recordCount is the number of table slots, 0 for the
  // default. The caller's appInfo and sortInfo are cleared and not stored.
  virtual int16_t CreateFile(const std::filesystem::path& fileName, std::string_view title,
                             std::string_view creator, std::string_view dbType,
                             int32_t recordCount, std::string& appInfo,
                             std::string& sortInfo) = 0;
  virtual void Rewind() = 0;
  virtual bool WriteRecord(std::string_view data) = 0;
  // 0, or the failure's number.
  virtual int16_t OpenFile(const std::filesystem::path& fileName) = 0;
  virtual int16_t RecordCount() = 0;
  // A negative number reads the next record in sequence.
  virtual bool ReadRecord(int32_t& number, std::string& data) = 0;
  virtual std::string Title() = 0;
  virtual std::string Creator() = 0;
  virtual std::string DBType() = 0;
  virtual std::string AppInfo() = 0;
  virtual std::string SortInfo() = 0;
  virtual double CreateDate() = 0;
  virtual double ModifyDate() = 0;
  virtual int16_t Attributes() = 0;
  virtual double BackupDate() = 0;
  virtual int16_t Position255() = 0;

  virtual int FileHandle() = 0;
  virtual int16_t CloseFile() = 0;
  // The checked end of a file being written: on the disk itself and closed.
  // Raises, naming the file, when that or any earlier write failed.
  virtual void FinishFile() = 0;
};

}  // namespace hifx
