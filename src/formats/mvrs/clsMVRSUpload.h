// Writes an MVRS reading file: a record type is set up, its values set, and
// the line written, each line 126 characters or its kind's full width.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
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
  clsRecType* SetupRecord(std::string_view id);
  // Writes the record as one line; always false. Writing with no file open
  // is failure 52.
  bool WriteRecord(clsRecType& record);

 private:
  IShell* shell_;
  std::vector<std::unique_ptr<clsRecType>> types_;
  // The kinds that can be set up, each with the first type of its kind.
  std::vector<std::pair<std::string_view, clsRecType*>> writable_;
  RecordLineWriter file_;
};

}  // namespace hifx
