#include "handheld/PalmFileCheck.h"

#include <cstdint>

#include "base/BinaryFile.h"
#include "base/Failure.h"
#include "base/FileWindow.h"
#include "handheld/IPalmFile.h"
#include "handheld/clsPalmFilePDB.h"
#include "handheld/clsPalmFileVFS.h"

namespace hifx {
namespace {

uint32_t BigEndianAt(const std::string& bytes, size_t at, size_t width) {
  uint32_t value = 0;
  for (size_t i = 0; i < width; ++i) value = value << 8 | static_cast<uint8_t>(bytes[at + i]);
  return value;
}

constexpr size_t kTable = clsPalmFilePDB::kTableStart;
constexpr size_t kSlot = clsPalmFilePDB::kSlotSize;

// head: the file's first bytes, at least its header and record list where
// the file holds them; size: the length of the whole file.
std::string PdbDamage(const std::string& head, uint64_t size) {
  if (size < kTable) {
    return "the file is " + std::to_string(size) + " bytes long, too short for the " + std::to_string(kTable) +
           "-byte header";
  }
  if (head.find('\0') >= 32) return "the database name has no terminating NUL within its 32 bytes";
  const uint32_t count = BigEndianAt(head, kTable - 2, 2);
  if (count > static_cast<uint32_t>(kMaxRecords)) {
    return "the header counts " + std::to_string(count) + " records, more than the " +
           std::to_string(kMaxRecords) + " a handheld file holds";
  }
  const size_t tableEnd = kTable + kSlot * count;
  if (tableEnd > size) {
    return "the header counts " + std::to_string(count) + " records, and their list runs past the end of the file";
  }
  uint32_t previous = 0;
  for (uint32_t record = 0; record < count; ++record) {
    const uint32_t offset = BigEndianAt(head, kTable + kSlot * record, 4);
    if (offset >= tableEnd && offset <= size && offset >= previous) {
      previous = offset;
      continue;
    }
    const std::string which = "record " + std::to_string(record) + " starts at offset " + std::to_string(offset);
    if (offset < tableEnd) return which + ", inside the header or the record list";
    if (offset > size) return which + ", past the end of the file (" + std::to_string(size) + " bytes)";
    return which + ", before the record ahead of it (" + std::to_string(previous) + ")";
  }
  return {};
}

// size: the file's length; lengthAt(at): the four bytes at `at`, big-endian,
// which are all there.
template <typename LengthAt>
std::string VfsDamage(uint64_t size, LengthAt&& lengthAt) {
  uint64_t at = 0;
  for (uint32_t record = 0; at < size; ++record) {
    if (size - at < 4) {
      return "record " + std::to_string(record) + " has a cut length at offset " + std::to_string(at);
    }
    const uint32_t length = lengthAt(at);
    if (length > size - at - 4) {
      return "record " + std::to_string(record) + " at offset " + std::to_string(at) + " claims " +
             std::to_string(length) + " bytes, past the end of the file";
    }
    at += 4 + length;
  }
  return {};
}

// A card file's record lengths, read from the file a stretch at a time.
std::string VfsDamage(const std::filesystem::path& path) {
  FileWindow file;
  file.Open(path, kMaxReadFileSize);
  std::string four;
  return VfsDamage(file.Size(), [&](uint64_t at) {
    file.Read(at, 4, four);
    // A file cut short since it was opened reads as a length past its end.
    return four.size() == 4 ? BigEndianAt(four, 0, 4) : UINT32_MAX;
  });
}

}  // namespace

std::string PalmFileDamage(const std::string& bytes, bool vfs) {
  if (!vfs) return PdbDamage(bytes, bytes.size());
  return VfsDamage(bytes.size(), [&bytes](uint64_t at) { return BigEndianAt(bytes, static_cast<size_t>(at), 4); });
}

std::string PalmFileDamage(const std::filesystem::path& path) {
  // The containers are told apart as the record layer tells them.
  const bool vfs = clsPalmFileVFS().TestFileType(path);
  std::error_code ec;
  const uint64_t size = std::filesystem::file_size(path, ec);
  if (vfs) return VfsDamage(path);
  if (ec || size > kMaxReadFileSize) return PalmFileDamage(ReadWholeFile(path), vfs);
  // A PDB's header and record list say all that is checked: its records
  // are not read.
  std::string head = ReadFileHead(path, kTable);
  if (head.size() == kTable) head = ReadFileHead(path, kTable + kSlot * BigEndianAt(head, kTable - 2, 2));
  // The count is taken again from the bytes read last, so a file changed
  // between the reads is never read past its head; one cut short since its
  // size was taken ends where its head does.
  const size_t wanted = head.size() < kTable ? kTable : kTable + kSlot * BigEndianAt(head, kTable - 2, 2);
  return PdbDamage(head, head.size() < wanted ? head.size() : size);
}

void RaiseIfDamaged(const std::filesystem::path& path) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec)) return;
  const std::string damage = PalmFileDamage(path);
  if (!damage.empty()) {
    throw Failure(FailureKind::BadInput, fail::kPathAccess, {}, path, "damaged handheld file: " + damage);
  }
}

}  // namespace hifx
