// The two ends of a utility system's file: its lines read one after the
// other and counted, or record lines written one after the other.
#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

#include "base/AtomicFile.h"
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

// A utility system's file being written: a new file beside the old one,
// which it replaces when Finish is called, or when it is released, as the
// file has always been closed on release (a failure then is not reported,
// and the old file stays). One whose writing failed never takes the name.
class RecordLineWriter {
 public:
  RecordLineWriter() = default;
  RecordLineWriter(RecordLineWriter&&) noexcept = default;
  RecordLineWriter& operator=(RecordLineWriter&& other) noexcept;
  ~RecordLineWriter();

  // Opens the file for writing; raises, naming the file, when it can't.
  void Create(const std::string& path);
  // Sets RecID to the kind's identifier and writes the record as one line of
  // at least `width` columns, ended by CR LF. With no file open this is
  // failure 52; a write that fails raises, naming the file.
  void Write(clsRecType& record, int16_t width);
  // Everything written put in place of the old file; raises when it can't be.
  void Finish();

 private:
  void Release() noexcept;

  std::unique_ptr<OutputFile> file_;
  std::string line_;  // the line being written, kept for its room
};

}  // namespace hifx
