// What `hifx --version` says: the program's version, the build it came
// from, and the versions of the files it writes.
#pragma once

#include <string>

namespace hifx::cli {

std::string VersionText();

}  // namespace hifx::cli
