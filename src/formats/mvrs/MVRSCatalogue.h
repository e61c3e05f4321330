// The record kinds of MVRS route files (download) and reading files
// (upload), in the order in which lines are tested against them.
#pragma once

#include <vector>

#include "formats/RecordCatalogue.h"

namespace hifx {

std::vector<RecordLayout> MVRSDownloadCatalogue();
std::vector<RecordLayout> MVRSUploadCatalogue();

}  // namespace hifx
