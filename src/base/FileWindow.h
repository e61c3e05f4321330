// A file read a stretch at a time: an open read handle and a window of the
// file's bytes kept in memory, refilled from where a read starts when it
// falls outside. Reading in order costs one system call a window; a file of
// any size takes no more memory than the window and the largest record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace hifx {

class FileWindow {
 public:
  // Small enough to come from the heap's reused memory, not a fresh mapping
  // each time a file is opened.
  static constexpr size_t kWindowBytes = 64 * 1024;

  FileWindow() = default;
  FileWindow(const FileWindow&) = delete;
  FileWindow& operator=(const FileWindow&) = delete;
  ~FileWindow() { Close(); }

  // Opens the file for reading. Raises failure 53 for a missing file, 75 for
  // one that is not a plain file or can't be read, and 7 for one above
  // maxSize bytes, as ReadWholeFile does. Another program may still rename or
  // remove the file while it is open here.
  void Open(const std::filesystem::path& path, uint64_t maxSize);
  bool IsOpen() const { return handle_ >= 0; }
  // The file's length when it was opened: what a reader here sees of it.
  uint64_t Size() const { return size_; }
  // The size bytes at offset. Those past the file's end, or past what can be
  // read of it, are left out: the answer is shorter.
  void Read(uint64_t offset, size_t size, std::string& out);
  // The same into place; the count of bytes read.
  size_t Read(uint64_t offset, char* out, size_t size);
  void Close();

 private:
  // Puts the window on the bytes from offset.
  void Fill(uint64_t offset);
  // Reads into place from the handle; the count read, short at the end.
  size_t ReadAt(uint64_t offset, char* bytes, size_t size);

  int handle_ = -1;
  std::filesystem::path path_;
  uint64_t size_ = 0;
  std::unique_ptr<char[]> window_;  // kWindowBytes, once a read needs it
  size_t windowSize_ = 0;           // the bytes of it that hold the file
  uint64_t windowAt_ = 0;
};

}  // namespace hifx
