// Reads a text file line by line, streaming. A line ends at CR LF, at a lone
// CR or at a lone LF; the last line needs no ending. Lines are 8-bit bytes,
// NULs and all.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace hifx {

class LineReader {
 public:
  // Longest line taken; a longer one is a failure, not an allocation.
  static constexpr size_t kMaxLine = 16u * 1024 * 1024;

  // Raises failure 53 for a missing file, 75 for one that can't be read.
  explicit LineReader(const std::filesystem::path& path);

  // The next line, without its ending; false at the end of the file.
  bool ReadLine(std::string& line);
  // Bytes consumed so far, and the file's length.
  uint64_t Position() const { return position_; }
  uint64_t Size() const { return size_; }

 private:
  bool Fill();

  std::ifstream in_;
  // The bytes read lie in buffer_ up to end_; the room past it is read
  // into, and grows only for a line longer than a read.
  std::string buffer_;
  size_t end_ = 0;
  size_t next_ = 0;
  uint64_t position_ = 0;
  uint64_t size_ = 0;
};

}  // namespace hifx
