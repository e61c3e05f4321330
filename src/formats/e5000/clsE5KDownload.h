// Reads an E5000 download (route) file line by line, each line parsed into
// the record type of its kind; a line of no known kind is the "?" record.
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

class clsE5KDownload {
 public:
  explicit clsE5KDownload(IShell* shell = nullptr);

  // False, with nothing opened, when the file doesn't exist.
  bool OpenFile(const std::string& path);
  // The record of the next line, or nothing at the end of the file or after
  // a failure (which is shown). The same record type comes back for every
  // line of a kind; the caller tells the kind by IDText.
  clsRecType* ReadNext();
  // How far the reading has come, 0 to 255.
  int16_t Position255() const { return file_.Position255(); }
  // The number of the line last read, from 1.
  int32_t LineNo() const { return file_.LineNo(); }

 private:
  IShell* shell_;
  std::vector<std::unique_ptr<clsRecType>> types_;  // the "?" record last
  RecordKinds kinds_;                               // all but the "?" record
  RecordLineReader file_;
  std::string line_;
};

}  // namespace hifx
