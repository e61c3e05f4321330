// The record kinds of E5000 download (route) and upload (reading) files, in
// the order in which they are looked for. Every kind is 80 columns wide.
#pragma once

#include <vector>

#include "formats/RecordCatalogue.h"

namespace hifx {

// The width of every E5000 line.
inline constexpr int16_t kE5KLineWidth = 80;
// The kind that stands for every line no other kind recognises; it is last
// in the download catalogue and no line is ever tested against it.
inline constexpr const char* kE5KUnknownKind = "?";

std::vector<RecordLayout> E5KDownloadCatalogue();
std::vector<RecordLayout> E5KUploadCatalogue();

}  // namespace hifx
