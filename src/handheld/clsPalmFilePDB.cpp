#include "handheld/clsPalmFilePDB.h"

#include <algorithm>
#include <cstring>

#include "base/DateSerial.h"
#include "base/Failure.h"
#include "base/Numbers.h"
#include "handheld/modPDB.h"

namespace hifx {
namespace {

constexpr int kTypeOffset = 60;
constexpr int kCreatorOffset = 64;
constexpr int kAppInfoOffset = 52;
constexpr int kSortInfoOffset = 56;

// Bytes of contents from offset, zero-filled past its end, as a read past the
// end of a file gives zeros.
void CopyPadded(const std::string& contents, uint64_t offset, uint8_t* out, size_t size) {
  std::memset(out, 0, size);
  if (offset >= contents.size()) return;
  const size_t n = std::min<uint64_t>(size, contents.size() - offset);
  std::memcpy(out, contents.data() + offset, n);
}

// The same from a file being read.
void CopyPadded(FileWindow& file, uint64_t offset, uint8_t* out, size_t size) {
  const size_t read = file.Read(offset, reinterpret_cast<char*>(out), size);
  std::memset(out + read, 0, size - read);
}

// A record's offset into its slot; one past the largest Long overflows, as
// the number it is stored as does.
void PutOffset(std::span<uint8_t> bytes, uint64_t offset) {
  if (offset > 0x7FFFFFFF) return PutBytes(bytes, Value::Double(static_cast<double>(offset)));
  PutWhole(bytes, static_cast<uint32_t>(offset));
}

}  // namespace

bool clsPalmFilePDB::TestFileType(const std::filesystem::path& fileName) {
  // The same verdict as OpenFile, from the header alone.
  CloseFile();
  try {
    std::error_code ec;
    if (std::filesystem::file_size(fileName, ec) > kMaxReadFileSize) return false;
    const std::string head = ReadFileHead(fileName, kTableStart);
    std::array<uint8_t, 2> count{};
    CopyPadded(head, kTableStart - 2, count.data(), count.size());
    return BytesToLong(count) <= 32767;
  } catch (const Failure&) {
    return false;
  }
}

int16_t clsPalmFilePDB::CreateFile(const std::filesystem::path& fileName, std::string_view title,
                                   std::string_view creator, std::string_view dbType,
                                   int32_t recordCount, std::string& appInfo,
                                   std::string& sortInfo) {
  appInfo.clear();
  sortInfo.clear();
  header_.fill(0);
  countBlock_.fill(0);
  PutBytes(std::span(header_).subspan(kCreatorOffset, 4), Value(std::string(creator)));
  PutBytes(std::span(header_).subspan(kTypeOffset, 4), Value(std::string(dbType)));
  // The name is cut at 32 bytes; a name of exactly 32 has no closing NUL.
  PutBytes(std::span(header_).subspan(0, 32), Value(std::string(title)));

  CloseFile();
  // The open does not truncate: the caller deletes an old file first.
  writer_ = BinaryFile::OpenForWrite(fileName);
  writer_.WriteAt(0, std::string_view(reinterpret_cast<const char*>(header_.data()), kHeaderSize));
  writer_.WriteAt(kHeaderSize, std::string_view(reinterpret_cast<const char*>(countBlock_.data()),
                                                countBlock_.size()));
  if (recordCount == 0) recordCount = kDefaultSlots;
  if (recordCount < 0) throw Failure(fail::kSubscript);
  table_.assign(static_cast<size_t>(recordCount + 1) * kSlotSize, 0);
  writer_.WriteAt(kTableStart, std::string(static_cast<size_t>(recordCount) * kSlotSize, '\0'));
  // The count and the table are then rewritten in place after each batch.
  head_ = writer_.MapHead(kTableStart + static_cast<uint64_t>(recordCount) * kSlotSize);
  pending_.clear();
  // A batch is sent once it reaches its size, so it never holds more than
  // that and one record: room for both from the start, never copied to grow.
  pending_.reserve(kWriteBatchBytes + 65536);
  onDisk_ = 0;
  return 0;
}

void clsPalmFilePDB::Rewind() { position_ = 0; }

bool clsPalmFilePDB::WriteRecord(std::string_view data) {
  if (!writer_.IsOpen()) throw Failure(fail::kBadFileName);
  // A record beyond the count a reader can walk is refused before any of it
  // is written: the file stays one that opens.
  if (StoredCount() >= kMaxRecords) {
    throw Failure(fail::kOverflow, "Could not write " + writer_.Path().string() + ": a handheld file holds at most " +
                                       std::to_string(kMaxRecords) + " records");
  }
  const uint64_t length = writer_.Size() + pending_.size();
  pending_.append(data);

  const int32_t n = StoredCount();
  const size_t slots = table_.size() / kSlotSize;  // slot count plus the end slot
  // A record past the table's last slot is still written behind the others;
  // its slot does not exist, which fails here.
  if (static_cast<size_t>(n) >= slots) throw Failure(fail::kSubscript);
  uint8_t* slot = table_.data() + static_cast<size_t>(n) * kSlotSize;
  PutOffset(std::span(slot, 4), length);
  PutWhole(std::span(slot + 6, 2), static_cast<uint32_t>(n));
  PutWhole(std::span(countBlock_).subspan(4, 2), static_cast<uint32_t>(n + 1));
  // The slot after this one holds the end offset; when this was the table's
  // last slot there is none, and the write fails only now, as it always has.
  if (static_cast<size_t>(n) + 1 >= slots) throw Failure(fail::kSubscript);
  PutOffset(std::span(slot + kSlotSize, 4), length + data.size());
  if (pending_.size() >= kWriteBatchBytes) WritePending();
  return true;
}

void clsPalmFilePDB::WritePending() {
  if (!writer_.IsOpen() || (pending_.empty() && onDisk_ == StoredCount())) return;
  // The records first, then their slots and the count: the header and table
  // on disk only ever describe records whose bytes are there, so a run
  // killed at any moment leaves a file that opens.
  writer_.Append(pending_);
  pending_.clear();
  const int32_t count = StoredCount();
  if (count > onDisk_) {
    const size_t first = static_cast<size_t>(onDisk_) * kSlotSize;
    PutHead(kTableStart + first, table_.data() + first, static_cast<size_t>(count - onDisk_) * kSlotSize);
  }
  PutHead(kHeaderSize, countBlock_.data(), countBlock_.size());
  onDisk_ = StoredCount();
}

void clsPalmFilePDB::PutHead(uint64_t offset, const uint8_t* bytes, size_t size) {
  if (head_ != nullptr && offset + size <= writer_.MappedSize()) {
    std::memcpy(head_ + offset, bytes, size);
  } else {
    writer_.WriteAt(offset, std::string_view(reinterpret_cast<const char*>(bytes), size));
  }
}

void clsPalmFilePDB::OpenForReading(const std::filesystem::path& fileName) {
  file_.Open(fileName, kMaxReadFileSize);
  CopyPadded(file_, 0, header_.data(), header_.size());
  CopyPadded(file_, kHeaderSize, countBlock_.data(), countBlock_.size());
  const int32_t count = StoredCount();
  // The table is walked with a 16-bit counter: more than 32767 records overflow.
  if (count > kMaxRecords) throw Failure(fail::kOverflow);
  table_.assign(static_cast<size_t>(count + 1) * kSlotSize, 0);
  CopyPadded(file_, kTableStart, table_.data(), static_cast<size_t>(count) * kSlotSize);
  PutBytes(std::span(table_.data() + static_cast<size_t>(count) * kSlotSize, 4),
           Value::Double(static_cast<double>(file_.Size())));
}

int16_t clsPalmFilePDB::OpenFile(const std::filesystem::path& fileName) {
  CloseFile();
  try {
    OpenForReading(fileName);
  } catch (const Failure& failure) {
    return static_cast<int16_t>(failure.Number());
  }
  return 0;
}

int32_t clsPalmFilePDB::StoredCount() const { return BytesToLong(std::span(countBlock_).subspan(4, 2)); }

int32_t clsPalmFilePDB::SlotOffset(size_t slot) const {
  return BytesToLong(std::span(table_.data() + slot * kSlotSize, 4));
}

int16_t clsPalmFilePDB::RecordCount() {
  const int32_t count = StoredCount();
  if (count > kMaxRecords) throw Failure(fail::kOverflow);
  return static_cast<int16_t>(count);
}

bool clsPalmFilePDB::ReadRecord(int32_t& number, std::string& data) {
  const int32_t count = StoredCount();
  if (number < 0) {
    if (position_ <= count - 1) {
      number = position_;
      ++position_;
    }
  } else {
    // A read by number puts the position on that record, not behind it, so a
    // sequential read that follows reads the same record again.
    if (number > 32767) throw Failure(fail::kOverflow);
    position_ = static_cast<int16_t>(number);
  }
  const size_t slots = table_.size() / kSlotSize;
  if (number < 0 || number > count - 1 || static_cast<size_t>(number) + 1 >= slots) {
    data.clear();
    return false;
  }
  const int32_t start = SlotOffset(static_cast<size_t>(number));
  const int32_t end = SlotOffset(static_cast<size_t>(number) + 1);
  if (end < start) throw Failure(fail::kSubscript);
  const auto size = static_cast<size_t>(end - start);
  if (static_cast<uint64_t>(end) > file_.Size()) throw Failure(fail::kPastEnd);
  file_.Read(static_cast<uint64_t>(start), size, data);
  // A file cut short since it was opened ends where it ends now.
  if (data.size() != size) throw Failure(fail::kPastEnd);
  return true;
}

std::string clsPalmFilePDB::Title() {
  const auto* begin = reinterpret_cast<const char*>(header_.data());
  const auto* nul = static_cast<const char*>(std::memchr(begin, 0, 32));
  return std::string(begin, nul != nullptr ? nul : begin + 32);
}

std::string clsPalmFilePDB::Creator() {
  return BytesToDecimalText(std::span(header_).subspan(kCreatorOffset, 4));
}

std::string clsPalmFilePDB::DBType() {
  return BytesToDecimalText(std::span(header_).subspan(kTypeOffset, 4));
}

std::string clsPalmFilePDB::BlockAt(int32_t start, int32_t end) {
  const int64_t size = static_cast<int64_t>(end) - start;
  if (size < 0) throw Failure(fail::kSubscript);
  if (static_cast<uint64_t>(size) > file_.Size()) throw Failure(fail::kPastEnd);
  // The block is read from its end offset, not its start: what comes back is
  // as many bytes of what lies behind the block. Nothing reads it.
  std::string block(static_cast<size_t>(size), '\0');
  CopyPadded(file_, static_cast<uint64_t>(end), reinterpret_cast<uint8_t*>(block.data()), block.size());
  return block;
}

std::string clsPalmFilePDB::AppInfo() {
  const int32_t start = BytesToLong(std::span(header_).subspan(kAppInfoOffset, 4));
  if (start == 0) return {};
  int32_t end = BytesToLong(std::span(header_).subspan(kSortInfoOffset, 4));
  if (end == 0) end = StoredCount() > 0 ? SlotOffset(0) : static_cast<int32_t>(file_.Size());
  return BlockAt(start, end);
}

std::string clsPalmFilePDB::SortInfo() {
  const int32_t start = BytesToLong(std::span(header_).subspan(kSortInfoOffset, 4));
  if (start == 0) return {};
  const int32_t end = StoredCount() > 0 ? SlotOffset(0) : static_cast<int32_t>(file_.Size());
  return BlockAt(start, end);
}

double clsPalmFilePDB::DateField(int offset) const {
  const int32_t seconds = BytesToLong(std::span(header_).subspan(static_cast<size_t>(offset), 4));
  if (seconds <= 0) return 0.0;
  return kPalmEpochSerial + seconds / 86400.0;
}

double clsPalmFilePDB::CreateDate() { return DateField(36); }
double clsPalmFilePDB::ModifyDate() { return DateField(40); }
double clsPalmFilePDB::BackupDate() { return DateField(44); }

int16_t clsPalmFilePDB::Attributes() {
  const int32_t value = BytesToLong(std::span(header_).subspan(32, 4));
  if (value > 32767) throw Failure(fail::kOverflow);
  return static_cast<int16_t>(value);
}

int16_t clsPalmFilePDB::Position255() {
  const int32_t c = StoredCount() - 1;
  if (c < 1) return 0;
  return ToInt16(static_cast<double>(position_) * 255.0 / c);
}

int clsPalmFilePDB::FileHandle() {
  if (writer_.IsOpen()) return writer_.Handle();
  return file_.IsOpen() ? 1 : 0;
}

void clsPalmFilePDB::FinishFile() {
  WritePending();
  head_ = nullptr;
  writer_.Finish();
  CloseFile();
}

int16_t clsPalmFilePDB::CloseFile() {
  // A file left unfinished, by a failure or a release, keeps every record
  // written to it, as it would have had each gone to disk at once.
  try {
    WritePending();
  } catch (const Failure&) {
    pending_.clear();
  }
  head_ = nullptr;
  writer_.Close();
  file_.Close();
  return 0;
}

}  // namespace hifx
