#include "handheld/clsPalmFileVFS.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "base/Failure.h"
#include "base/Numbers.h"
#include "handheld/modPDB.h"

namespace hifx {

bool clsPalmFileVFS::TestFileType(const std::filesystem::path& fileName) {
  CloseFile();
  std::string head;
  try {
    std::error_code ec;
    if (std::filesystem::file_size(fileName, ec) > kMaxReadFileSize) return false;
    head = ReadFileHead(fileName, 4);
  } catch (const Failure&) {
    return false;
  }
  std::array<uint8_t, 4> first{};
  std::memcpy(first.data(), head.data(), head.size());
  // A big-endian record length from 1 to 65535. A PDB fails this because its
  // first bytes are the database's name.
  return first[0] == 0 && first[1] == 0 && (first[2] != 0 || first[3] != 0);
}

int16_t clsPalmFileVFS::CreateFile(const std::filesystem::path& fileName, std::string_view,
                                   std::string_view, std::string_view, int32_t, std::string&,
                                   std::string&) {
  CloseFile();
  try {
    // As for PDB, the open does not truncate an existing file.
    writer_ = BinaryFile::OpenForWrite(fileName);
  } catch (const Failure& failure) {
    return static_cast<int16_t>(failure.Number());
  }
  writePosition_ = 0;
  return 0;
}

void clsPalmFileVFS::Rewind() {
  WritePending();
  readPosition_ = 0;
  writePosition_ = 0;
}

bool clsPalmFileVFS::WriteRecord(std::string_view data) {
  if (!writer_.IsOpen()) throw Failure(fail::kBadFileName);
  if (pending_.empty()) pendingAt_ = writePosition_;
  std::array<uint8_t, 4> length{};
  PutBytes(std::span(length), Value::Double(static_cast<double>(data.size())));
  pending_.append(reinterpret_cast<const char*>(length.data()), length.size());
  pending_.append(data);
  writePosition_ += length.size() + data.size();
  if (pending_.size() >= kWriteBatchBytes) WritePending();
  return true;
}

void clsPalmFileVFS::WritePending() {
  if (pending_.empty() || !writer_.IsOpen()) return;
  // One write of whole records: a run killed between batches leaves a file
  // that ends where a record ends.
  const std::string batch = std::move(pending_);
  pending_.clear();
  writer_.WriteAt(pendingAt_, batch);
}

int16_t clsPalmFileVFS::OpenFile(const std::filesystem::path& fileName) {
  CloseFile();
  try {
    file_.Open(fileName, kMaxReadFileSize);
  } catch (const Failure& failure) {
    return static_cast<int16_t>(failure.Number());
  }
  readPosition_ = 0;
  return 0;
}

bool clsPalmFileVFS::ReadRecord(int32_t&, std::string& data) {
  // The record number is ignored: this container reads only in sequence.
  const uint64_t size = file_.Size();
  if (readPosition_ >= size) {
    data.clear();
    return false;
  }
  std::array<uint8_t, 4> lengthBytes{};
  file_.Read(readPosition_, lengthBytes.size(), data);
  std::memcpy(lengthBytes.data(), data.data(), data.size());
  readPosition_ += std::min<uint64_t>(lengthBytes.size(), size - readPosition_);
  const int32_t length = BytesToLong(lengthBytes);
  if (static_cast<uint64_t>(length) > size - readPosition_) {
    readPosition_ = size;
    throw Failure(fail::kPastEnd);
  }
  file_.Read(readPosition_, static_cast<size_t>(length), data);
  // A file cut short since it was opened ends where it ends now.
  if (data.size() != static_cast<size_t>(length)) {
    readPosition_ = size;
    throw Failure(fail::kPastEnd);
  }
  readPosition_ += static_cast<uint64_t>(length);
  // A record of length 0 reads as False, though it is not the end of the file.
  return !data.empty();
}

int16_t clsPalmFileVFS::Position255() {
  if (file_.Size() == 0) return 0;
  // The product is a 32-bit integer: above about 8 MB it overflows.
  const int64_t product = static_cast<int64_t>(readPosition_) * 255;
  if (product > 2147483647) throw Failure(fail::kOverflow);
  return ToInt16(static_cast<double>(product) / static_cast<double>(file_.Size()));
}

int clsPalmFileVFS::FileHandle() {
  if (writer_.IsOpen()) return writer_.Handle();
  return file_.IsOpen() ? 1 : 0;
}

void clsPalmFileVFS::FinishFile() {
  WritePending();
  writer_.Finish();
  CloseFile();
}

int16_t clsPalmFileVFS::CloseFile() {
  // A file left unfinished keeps every record written to it.
  try {
    WritePending();
  } catch (const Failure&) {
    pending_.clear();
  }
  writer_.Close();
  file_.Close();
  return 0;
}

}  // namespace hifx
