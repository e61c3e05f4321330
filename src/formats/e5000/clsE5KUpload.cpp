#include "formats/e5000/clsE5KUpload.h"

#include "formats/e5000/E5KCatalogue.h"

namespace hifx {

clsE5KUpload::clsE5KUpload(IShell* shell) : types_(BuildRecordTypes(E5KUploadCatalogue(), shell)) {}

clsRecType* clsE5KUpload::SetupRecord(const std::string& id) {
  for (const auto& type : types_) {
    if (type->IDText == id) {
      type->Init();
      return type.get();
    }
  }
  return nullptr;
}

void clsE5KUpload::WriteRecord(clsRecType& record) { file_.Write(record, kE5KLineWidth); }

bool clsE5KUpload::CreateFile(const std::string& path) {
  try {
    Open(path);
    return true;
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace hifx
