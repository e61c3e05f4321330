// The handheld's own readers refuse a file whose structure doesn't hold; the
// containers here are lenient, as the conversions have always been. This
// check is the strict reading, for the commands that show a file to a person.
#pragma once

#include <filesystem>
#include <string>

namespace hifx {

// What is wrong with the file's structure, in a few words; empty when
// nothing is. Raises as ReadWholeFile does for a file that can't be read.
std::string PalmFileDamage(const std::filesystem::path& path);

// Raises a failure of kind BadInput naming the file, saying what is wrong,
// when its structure doesn't hold. A file that isn't there or isn't a plain
// file is left to the reading that follows to say so.
void RaiseIfDamaged(const std::filesystem::path& path);

// The same for bytes already read: a card-file stream when vfs is set,
// otherwise a record database.
std::string PalmFileDamage(const std::string& bytes, bool vfs);

}  // namespace hifx
