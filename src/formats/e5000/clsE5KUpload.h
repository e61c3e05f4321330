// Writes an E5000 upload (reading) file: a record type is set up, its values
// set, and the line written, 80 columns each.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/Shell.h"
#include "formats/RecordFile.h"
#include "formats/clsRecType.h"

namespace hifx {

class clsE5KUpload {
 public:
  explicit clsE5KUpload(IShell* shell = nullptr);

  // Opens the file for writing, to replace what is there; false when it
  // can't. Open raises instead, naming the file and the reason.
  bool CreateFile(const std::string& path);
  void Open(const std::string& path) { file_.Create(path); }
  // The file put in place of the old one; raises when it can't be.
  void Finish() { file_.Finish(); }
  // The record type of the kind, its values cleared; nothing for a kind the
  // upload doesn't have.
  clsRecType* SetupRecord(const std::string& id);
  // Writes the record as one line. Writing with no file open is failure 52.
  void WriteRecord(clsRecType& record);

 private:
  std::vector<std::unique_ptr<clsRecType>> types_;
  RecordLineWriter file_;
};

}  // namespace hifx
