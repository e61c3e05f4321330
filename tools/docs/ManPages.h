// The manual pages of hifx, made from the command line's own definition:
// hifx(1) for the whole line and hifx-COMMAND(1) for each command.
#pragma once

#include <CLI/CLI.hpp>

#include <filesystem>
#include <map>
#include <string>

namespace hifx::docs {

// Each page's file name ("hifx.1", "hifx-route.1") and its roff.
std::map<std::string, std::string> ManPages(const CLI::App& root, const std::string& version);

// The pages written into folder, and the pages left there by an earlier
// run that no command has any more removed.
void WriteManPages(const CLI::App& root, const std::string& version, const std::filesystem::path& folder);

}  // namespace hifx::docs
