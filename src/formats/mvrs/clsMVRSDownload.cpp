#include "formats/mvrs/clsMVRSDownload.h"

#include "base/Failure.h"
#include "formats/mvrs/MVRSCatalogue.h"

namespace hifx {

clsMVRSDownload::clsMVRSDownload(IShell* shell)
    : shell_(shell), types_(BuildRecordTypes(MVRSDownloadCatalogue(), shell)) {
  for (const auto& type : types_) kinds_.Add(type.get());
}

bool clsMVRSDownload::OpenFile(const std::string& path) { return file_.Open(path); }

clsRecType* clsMVRSDownload::ReadNext() {
  try {
    if (!file_.Next(line_)) return nullptr;
    if (clsRecType* type = kinds_.Find(line_)) {
      type->Parse(line_);
      return type;
    }
  } catch (const Failure& failure) {
    failure_ = failure.Description();
    if (shell_ != nullptr) shell_->MsgBox("Error in Readnext: " + failure_);
  }
  return nullptr;
}

}  // namespace hifx
