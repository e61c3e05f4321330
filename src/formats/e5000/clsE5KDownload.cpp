#include "formats/e5000/clsE5KDownload.h"

#include "base/Failure.h"
#include "formats/e5000/E5kCatalogue.h"

namespace hifx {

clsE5KDownload::clsE5KDownload(IShell* shell)
    : shell_(shell), types_(BuildRecordTypes(E5kDownloadCatalogue(), shell)) {}

bool clsE5KDownload::OpenFile(const std::string& path) { return file_.Open(path); }

clsRecType* clsE5KDownload::ReadNext() {
  try {
    if (!file_.Next(line_)) return nullptr;
    // The catch-all is never tested: it takes what the others leave.
    clsRecType* record = types_.back().get();
    for (size_t i = 0; i + 1 < types_.size(); ++i) {
      if (types_[i]->TestID(line_)) {
        record = types_[i].get();
        break;
      }
    }
    record->Parse(line_);
    return record;
  } catch (const Failure& failure) {
    if (shell_ != nullptr) shell_->MsgBox("Error in Readnext: " + failure.Description());
  }
  return nullptr;
}

}  // namespace hifx
