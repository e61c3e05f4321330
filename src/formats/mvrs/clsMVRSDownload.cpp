#include "formats/mvrs/clsMVRSDownload.h"

#include <filesystem>

#include "base/Failure.h"
#include "base/Numbers.h"
#include "formats/mvrs/MvrsCatalogue.h"

namespace hifx {

clsMVRSDownload::clsMVRSDownload(IShell* shell)
    : shell_(shell), types_(BuildRecordTypes(MvrsDownloadCatalogue(), shell)) {}

bool clsMVRSDownload::OpenFile(const std::string& path) {
  std::error_code ec;
  if (!std::filesystem::exists(path, ec)) return false;
  file_ = std::make_unique<LineReader>(path);
  lineNo_ = 0;
  return true;
}

int16_t clsMVRSDownload::Position255() const {
  if (!file_) return 0;
  const uint64_t blocks = (file_->Size() + 127) / 128;
  if (blocks < 1) return 0;
  const uint64_t at = file_->Position() / 128;
  return ToInt16(static_cast<double>(at) * 255.0 / static_cast<double>(blocks));
}

clsRecType* clsMVRSDownload::ReadNext() {
  try {
    if (!file_ || !file_->ReadLine(line_)) return nullptr;
    ++lineNo_;
    for (const auto& type : types_) {
      if (type->TestID(line_)) {
        type->Parse(line_);
        return type.get();
      }
    }
  } catch (const Failure& failure) {
    if (shell_ != nullptr) shell_->MsgBox("Error in Readnext: " + failure.Description());
  }
  return nullptr;
}

}  // namespace hifx
