// The two ends of a utility system's file: its lines read one after the
// other and counted, or record lines written one after the other.
#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

#include "base/LineReader.h"
#include "formats/clsRecType.h"

namespace hifx {

class RecordLineReader {
 public:
  // False, with nothing opened, when the file doesn't exist.
  bool Open(const std::string& path);
  // The next line, counted; false at the end of the file or with none open.
  bool Next(std::string& line);
  // How far the reading has come, 0 to 255.
  int16_t Position255() const;
  // The number of the line last read, from 1.
  int32_t LineNo() const { return lineNo_; }

 private:
  std::unique_ptr<LineReader> file_;
  int32_t lineNo_ = 0;
};

class RecordLineWriter {
 public:
  // Opens the file for writing, replacing what is there; false when it can't.
  bool Create(const std::string& path);
  // Sets RecID to the kind's identifier and writes the record as one line of
  // at least `width` columns, ended by CR LF. With no file open this is
  // failure 52; a write that fails is failure 61.
  void Write(clsRecType& record, int16_t width);

 private:
  // The file and its buffer, which must outlive the stream that writes
  // through it: the stream is closed first, then the buffer goes.
  struct Output {
    static constexpr std::streamsize kBufferSize = 1 << 20;
    std::unique_ptr<char[]> buffer = std::make_unique<char[]>(kBufferSize);
    std::ofstream stream;
  };
  std::unique_ptr<Output> file_;
};

}  // namespace hifx
