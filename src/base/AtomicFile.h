// Replacing a file whole: the new bytes go to a temporary file beside it,
// which is then renamed over the old one. A reader never sees half a file,
// and a failure leaves the old file as it was.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace hifx {

// ownerOnly makes the new file readable and writable by its owner alone, for
// files that carry the site's passwords.
void ReplaceFile(const std::filesystem::path& path, const std::string& bytes,
                 bool ownerOnly = false);

// As ReplaceFile, but the new file, complete on disk under its temporary
// name, must first pass `acceptable`; false, with the old file as it was,
// when it doesn't. Failures to write raise as ReplaceFile's do.
bool ReplaceFileIf(const std::filesystem::path& path, const std::string& bytes,
                   const std::function<bool(const std::filesystem::path& written)>& acceptable);

}  // namespace hifx
