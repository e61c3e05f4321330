// What the setup window decides apart from drawing: the map choices of each
// panel, the words of the handheld file's form, and which file dialog each
// panel's file gets.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace hifx::shell {

// The forms of the handheld file, in the list's order, and the words stored.
inline constexpr const char* kHIFTypeWords[] = {"PDB", "PRC", "VFS"};
inline constexpr const char* kHIFTypeTexts[] = {"Palm Database File (PDB)", "Palm Resource File (PRC)",
                                                "Virtual File System (VFS)!"};

// The list position of a stored word; any other word is the first.
int HIFTypePosition(std::string_view word);
std::string HIFTypeWord(int position);

// The maps of the use in the site folder, by their names without the
// extension, in the order of the names.
std::vector<std::string> MapChoices(const std::filesystem::path& folder, int32_t use);

// The filter of an interchange file's dialog, and the entry the file's
// current extension chooses (the first when it is none of them).
inline constexpr const char* kInterchangeFilter =
    "HIF Files (*.hif)|*.hif|DAT Files (*.dat)|*.dat|PRC Files (*.prc)|*.prc|PDB Files (*.pdb)|*.pdb";
inline constexpr const char* kAnyFileFilter = "All Files(*.*)|*.*";
int InterchangeFilterIndex(const std::filesystem::path& file);

// The name a map editor's result leaves in the list: the saved map's name
// without its extension; empty for "{DELETED}" or nothing saved.
std::string MapChoiceOf(const std::string& editorResult);

}  // namespace hifx::shell
