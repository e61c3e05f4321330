#include "formats/e5000/clsE5KDownload.h"

#include "base/Failure.h"
#include "formats/e5000/E5KCatalogue.h"

namespace hifx {

clsE5KDownload::clsE5KDownload(IShell* shell)
    : shell_(shell), types_(BuildRecordTypes(E5KDownloadCatalogue(), shell)) {
  for (size_t i = 0; i + 1 < types_.size(); ++i) {
    byFirstByte_[static_cast<unsigned char>(types_[i]->IDText.front())].push_back(types_[i].get());
  }
}

bool clsE5KDownload::OpenFile(const std::string& path) { return file_.Open(path); }

clsRecType* clsE5KDownload::ReadNext() {
  try {
    if (!file_.Next(line_)) return nullptr;
    // The catch-all is never tested: it takes what the others leave.
    clsRecType* record = types_.back().get();
    if (!line_.empty()) {
      for (clsRecType* type : byFirstByte_[static_cast<unsigned char>(line_.front())]) {
        if (type->TestID(line_)) {
          record = type;
          break;
        }
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
