// Reads an MVRS route file line by line, each line parsed into the record
// type of its kind. An unknown line reads as the end of the file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/Shell.h"
#include "formats/RecordCatalogue.h"
#include "formats/RecordFile.h"
#include "formats/clsRecType.h"

namespace hifx {

class clsMVRSDownload {
 public:
  explicit clsMVRSDownload(IShell* shell = nullptr);

  // False, with nothing opened, when the file doesn't exist.
  bool OpenFile(const std::string& path);
  // How far the reading has come, 0 to 255.
  int16_t Position255() const { return file_.Position255(); }
  // The record of the next line, or nothing at the end of the file, at a
  // line of no known kind, or after a failure (which is shown). The same
  // record type comes back for every line of a kind.
  clsRecType* ReadNext();
  // The number of the line last read, from 1.
  int32_t LineNo() const { return file_.LineNo(); }
  // What stopped the reading at a failure, and empty before one.
  const std::string& LastFailure() const { return failure_; }

 private:
  IShell* shell_;
  std::vector<std::unique_ptr<clsRecType>> types_;
  RecordKinds kinds_;
  RecordLineReader file_;
  std::string line_;
  std::string failure_;
};

}  // namespace hifx
