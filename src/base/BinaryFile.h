// Binary files for the containers: a writer that puts bytes at given offsets
// straight through to the operating system (no user-space buffer, so a killed
// run leaves on disk everything written so far), and a bounded whole-file
// reader.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace hifx {

// Largest file the readers take, whole into memory or a window at a time.
inline constexpr uint64_t kMaxReadFileSize = 512ull * 1024 * 1024;

class BinaryFile {
 public:
  BinaryFile() = default;
  BinaryFile(const BinaryFile&) = delete;
  BinaryFile& operator=(const BinaryFile&) = delete;
  BinaryFile(BinaryFile&& other) noexcept;
  BinaryFile& operator=(BinaryFile&& other) noexcept;
  ~BinaryFile();

  // Opens for binary writing, creating the file if needed. An existing file is
  // not truncated. Raises a failure when the file can't be opened.
  static BinaryFile OpenForWrite(const std::filesystem::path& path);
  // A file that must not exist yet, made for writing; ownerOnly keeps it to
  // its owner from its first moment.
  static BinaryFile CreateNew(const std::filesystem::path& path, bool ownerOnly = false);

  bool IsOpen() const { return fd_ >= 0; }
  const std::filesystem::path& Path() const { return path_; }
  int Handle() const { return fd_; }
  // Length of the file: its length when opened, grown by every write.
  uint64_t Size() const { return size_; }
  // Every write is checked: one that fails raises a failure naming the file
  // and the system's reason, and the file counts as failed from then on.
  void WriteAt(uint64_t offset, std::string_view bytes);
  void Append(std::string_view bytes) { WriteAt(size_, bytes); }
  bool Failed() const { return failed_; }
  // Maps the first `size` bytes of the file, which must exist, for writing
  // in place: a store into the mapping is in the operating system's hands at
  // once, as a write call is, so a killed process loses nothing of it.
  // Returns nullptr where the platform has no such mapping; the caller then
  // writes through WriteAt.
  uint8_t* MapHead(uint64_t size);
  uint64_t MappedSize() const { return mappedSize_; }
  // The checked end of writing: the bytes put on the disk itself, and the
  // file closed. Raises, naming the file, when that fails or an earlier
  // write did.
  void Finish();
  // Closes without a word, as a release does.
  void Close();

 private:
  void Unmap();

  static BinaryFile Open(const std::filesystem::path& path, bool createNew, bool ownerOnly);
  [[noreturn]] void Fail(const char* what, int err);

  int fd_ = -1;
  bool failed_ = false;
  std::filesystem::path path_;
  uint64_t size_ = 0;
  uint8_t* mapped_ = nullptr;
  uint64_t mappedSize_ = 0;
};

// Raises failure 53 for a missing file and 75 for one that is not a plain
// file.
void CheckReadableFile(const std::filesystem::path& path);

// The first bytes of a file, up to count; fewer when the file is shorter.
// Raises as ReadWholeFile does.
std::string ReadFileHead(const std::filesystem::path& path, size_t count);

// The whole file, read in binary. Raises failure 53 for a missing file, 75 for
// one that can't be read, and 7 for one above maxSize bytes.
std::string ReadWholeFile(const std::filesystem::path& path, uint64_t maxSize = kMaxReadFileSize);

}  // namespace hifx
