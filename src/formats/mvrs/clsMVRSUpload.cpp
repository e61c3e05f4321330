#include "formats/mvrs/clsMVRSUpload.h"

#include <array>
#include <string_view>

#include "base/Failure.h"
#include "base/Text.h"
#include "formats/mvrs/MVRSCatalogue.h"

namespace hifx {
namespace {

// The kinds SetupRecord gives out, in the order it looks for them. The
// catalogue also knows "MTM", which can't be set up.
constexpr std::array<std::string_view, 18> kWritable = {"FHD", "FTR", "RHD", "RTR", "ERH", "ERT",
                                                        "RTS", "RTM", "RMR", "CUS", "CSX", "MTR",
                                                        "MTS", "RDG", "MTC", "PRB", "RFF", "WRR"};

}  // namespace

clsMVRSUpload::clsMVRSUpload(IShell* shell) : shell_(shell), types_(BuildRecordTypes(MVRSUploadCatalogue(), shell)) {
  for (const std::string_view kind : kWritable) {
    for (const auto& type : types_) {
      if (type->IDText == kind) {
        writable_.emplace_back(kind, type.get());
        break;
      }
    }
  }
}

bool clsMVRSUpload::CreateFile(const std::string& path) {
  try {
    file_.Create(path);
    return true;
  } catch (const Failure& failure) {
    if (shell_ != nullptr) shell_->MsgBox(failure.Description());
    return false;
  }
}

clsRecType* clsMVRSUpload::SetupRecord(std::string_view id) {
  for (const auto& [kind, type] : writable_) {
    if (SameShortText(kind, id)) {
      type->Init();
      return type;
    }
  }
  return nullptr;
}

bool clsMVRSUpload::WriteRecord(clsRecType& record) {
  file_.Write(record, 126);
  return false;
}

}  // namespace hifx
