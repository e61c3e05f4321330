// A map is named the same way everywhere on the command line: with or
// without the extension of its kind.
#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace hifx::cli {

// The use a map file's name stands for, by its extension in any case
// (route and re-read maps share ".hcm", taken as route); 0 for none.
int32_t UseOfName(std::string_view name);

// An option that names a map of the use: the name taken with or without
// the use's extension and left without it, as the settings hold it; a name
// with the extension of another kind of map is refused.
CLI::Validator MapOfUse(int32_t use);

// The file of the map NAME in the site folder: NAME when it has its
// extension, else the one map file of that name. None, or several of that
// name, is said as a failure.
std::string MapFileNamed(const std::filesystem::path& siteFolder, const std::string& name);

}  // namespace hifx::cli
