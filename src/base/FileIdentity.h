// Whether two names reach one file: the same file of the disk where it
// exists (through symbolic and hard links alike), the same resolved name
// where it doesn't yet. A run checks its outputs against its inputs with this
// before it writes anything.
#pragma once

#include <filesystem>
#include <string>

namespace hifx {

bool SameFile(const std::filesystem::path& a, const std::filesystem::path& b);

// Whether the name is free for a new file or holds a plain file (through any
// links): a device, a pipe or a folder is never replaced.
bool IsReplaceable(const std::filesystem::path& path);

}  // namespace hifx
