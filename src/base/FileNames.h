// File names as the settings, maps and command lines give them: a site's
// settings travel between Windows desks and others, so "/" and "\" both
// separate folders here, on every platform.
#pragma once

#include <string>
#include <string_view>

namespace hifx {

// The name after the last folder separator of either kind: "route.txt" of
// "C:\in\route.txt" and of "in/route.txt".
std::string FileNamePart(std::string_view path);

// Whether the text names a folder as well as a file.
bool HasFolderPart(std::string_view path);

}  // namespace hifx
