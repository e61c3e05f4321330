#include "formats/e5000/clsE5KDownload.h"

#include "base/Failure.h"
#include "formats/e5000/E5KCatalogue.h"

namespace hifx {

clsE5KDownload::clsE5KDownload(IShell* shell)
    : shell_(shell), types_(BuildRecordTypes(E5KDownloadCatalogue(), shell)) {
  for (size_t i = 0; i + 1 < types_.size(); ++i) kinds_.Add(types_[i].get());
}

bool clsE5KDownload::OpenFile(const std::string& path) { return file_.Open(path); }

clsRecType* clsE5KDownload::ReadNext() {
  try {
    if (!file_.Next(line_)) return nullptr;
    // The catch-all is never tested: it takes what the others leave.
    clsRecType* record = kinds_.Find(line_);
    if (record == nullptr) record = types_.back().get();
    record->Parse(line_);
    return record;
  } catch (const Failure& failure) {
    if (shell_ != nullptr) shell_->MsgBox("Error in Readnext: " + failure.Description());
  }
  return nullptr;
}

}  // namespace hifx
