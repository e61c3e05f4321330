// Writes an MVRS reading file: a record type is set up, its values set, and
// the line written, each line 126 characters or its kind's full width.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/Shell.h"
#include "formats/RecordFile.h"
#include "formats/clsRecType.h"

namespace hifx {

class clsMVRSUpload {
 public:
  explicit clsMVRSUpload(IShell* shell = nullptr);

  // Opens the file for writing, replacing what is there. A failure is shown
  // and gives false.
  bool CreateFile(const std::string& path);
  // The file put in place of the old one; raises when it can't be.
  void Finish() { file_.Finish(); }
  // The record type of the kind, its values cleared; nothing for a kind the
  // reading file doesn't write.
  clsRecType* SetupRecord(const std::string& id);
  // Writes the record as one line; always false. Writing with no file open
  // is failure 52.
  bool WriteRecord(clsRecType& record);

 private:
  IShell* shell_;
  std::vector<std::unique_ptr<clsRecType>> types_;
  RecordLineWriter file_;
};

}  // namespace hifx
