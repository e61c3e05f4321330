#include "config/clsDist.h"

#include <algorithm>

#include "base/AtomicFile.h"
#include "base/BinaryFile.h"
#include "base/CaseBlind.h"
#include "base/Failure.h"
#include "base/FileWindow.h"
#include "base/Text.h"
#include "config/RegistryRoot.h"
#include "config/clsRegistry.h"
#include "maps/clsExchMap.h"

namespace hifx {
namespace {

constexpr std::string_view kCaption = "Distribution";
constexpr std::string_view kCrLf = "\r\n";

std::string SectionLine(const std::filesystem::path& file) {
  const std::string name = file.filename().string();
  const std::string ending = UpperCase(name.size() >= 3 ? name.substr(name.size() - 3) : name);
  if (ending == "HCM") return "[ROUTE MAP " + name + "]";
  if (ending == "HRM") return "[READING MAP " + name + "]";
  if (ending == "HOM") return "[ORPHAN MAP " + name + "]";
  return "[UNKNOWN MAP " + name + "]";
}

// Calls found(offset) at each place the needle stands in the file, from its
// start, until found returns false. The needle never overlaps itself, so
// every place found is one a search from the end of the last would find.
template <typename Found>
void ForEachPlace(FileWindow& file, std::string_view needle, Found&& found) {
  constexpr uint64_t kStretch = 32 * 1024;
  std::string stretch;
  for (uint64_t at = 0; at < file.Size(); at += kStretch) {
    // Each stretch runs on into the next by the needle less one byte.
    file.Read(at, kStretch + needle.size() - 1, stretch);
    for (size_t hit = stretch.find(needle); hit != std::string::npos && hit < kStretch;
         hit = stretch.find(needle, hit + 1)) {
      if (!found(at + hit)) return;
    }
  }
}

// Where each section of a distribution file begins and ends: the file split
// at every line break followed by "[", the "[" going with the break. A file
// with no CR LF at all splits at LF, so files edited elsewhere load.
std::vector<std::pair<uint64_t, uint64_t>> FindSections(FileWindow& file) {
  bool crLf = false;
  ForEachPlace(file, "\r\n", [&crLf](uint64_t) {
    crLf = true;
    return false;
  });
  const std::string_view separator = crLf ? "\r\n[" : "\n[";
  std::vector<std::pair<uint64_t, uint64_t>> sections;
  uint64_t start = 0;
  ForEachPlace(file, separator, [&](uint64_t at) {
    sections.emplace_back(start, at);
    start = at + separator.size();
    return true;
  });
  sections.emplace_back(start, file.Size());
  return sections;
}

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(std::move(line));
    start = end + 1;
  }
  return lines;
}

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// A map section names a map of its own kind: a plain name in the site
// folder with the ending of that kind, never a hidden name or any other file
// the site keeps for itself.
bool IsMapName(const std::string& name, std::string_view ending) {
  return name.size() > ending.size() && name.front() != '.' &&
         name.find_first_of("/\\:") == std::string::npos && name.find('\0') == std::string::npos &&
         UpperCase(name.substr(name.size() - ending.size())) == UpperCase(ending);
}

}  // namespace

std::vector<std::filesystem::path> MapFilesIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator(folder, ec)) {
    const std::string ext = UpperCase(entry.path().extension().string());
    if (ext.size() == 4 && ext[1] == 'H' && ext[3] == 'M' && entry.is_regular_file(ec)) {
      files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

clsDist::clsDist(IRegistryStore& store, IShell& shell, std::filesystem::path siteFolder)
    : store_(store), shell_(shell), site_(std::move(siteFolder)) {}

std::string clsDist::BuildDist() {
  std::string text = "DIST 1.0\r\n[REGISTRY]\r\n";
  text += clsRegistry(store_).GetKeyInfo({std::string(kRootHive), std::string(kRootPath)}, shell_);
  // Each map section stands behind a line break of its own, which a load
  // takes as the section's start; the map's bytes then come back unchanged.
  for (const auto& file : MapFilesIn(site_)) {
    text += std::string(kCrLf) + SectionLine(file) + std::string(kCrLf) + ReadWholeFile(file);
  }
  return text;
}

bool clsDist::WriteDist(const std::filesystem::path& path) {
  if (path.empty()) return false;
  // The file carries the site's passwords in clear, like the registry.
  ReplaceFile(path, BuildDist(), true);
  shell_.MsgBox(path.string() + " written.", kCaption, MsgButtons::OK, MsgIcon::Information);
  return true;
}

bool clsDist::LoadDist(const std::filesystem::path& path) {
  if (path.empty()) return false;
  // The file is read a section at a time; one passed over is not read whole.
  FileWindow file;
  file.Open(path, kMaxReadFileSize);
  const auto sections = FindSections(file);
  const auto read = [&file](const std::pair<uint64_t, uint64_t>& section, uint64_t most) {
    std::string text;
    file.Read(section.first, static_cast<size_t>(std::min(section.second - section.first, most)), text);
    return text;
  };
  // Only the five characters are looked at, not the version.
  if (!StartsWith(read(sections.front(), 5), "DIST ")) {
    shell_.MsgBox("Distribution file not properly formatted", kCaption, MsgButtons::OK,
                  MsgIcon::Critical);
    return false;
  }
  for (size_t i = 1; i < sections.size(); ++i) {
    const std::string head = UpperCase(read(sections[i], 16));
    const auto whole = [&] { return read(sections[i], UINT64_MAX); };
    if (StartsWith(head, "ROUTE MAP")) {
      LoadMapSection(whole(), kUseRoute);
    } else if (StartsWith(head, "READING MAP")) {
      LoadMapSection(whole(), kUseReading);
    } else if (StartsWith(head, "ORPHAN MAP")) {
      LoadMapSection(whole(), kUseOrphan);
    } else if (StartsWith(head, "REGISTRY")) {
      LoadRegistrySection(whole());
    }
    // Anything else, unknown maps among them, is passed over.
  }
  // The registry says a failed write by its result alone: a load that lost
  // values says how many, and is not called loaded.
  if (unsaved_ > 0) {
    shell_.MsgBox(std::to_string(unsaved_) + " settings of " + path.string() + " could not be saved", kCaption,
                  MsgButtons::OK, MsgIcon::Critical);
    unsaved_ = 0;
    return false;
  }
  shell_.MsgBox(path.string() + " loaded.", kCaption, MsgButtons::OK, MsgIcon::Information);
  return true;
}

void clsDist::LoadMapSection(const std::string& section, int32_t use) {
  const size_t map = section.find(" MAP ");
  const size_t close = map == std::string::npos ? std::string::npos : section.find(']', map);
  const size_t content = section.find("HIF=");
  std::string name;
  if (close != std::string::npos) name = section.substr(map + 5, close - map - 5);
  // The new map must load as a map of its kind before it takes the old one's
  // place; otherwise the old one stays.
  const auto loads = [&](const std::filesystem::path& written) {
    clsExchMap probe(site_);
    return probe.LoadMap(written.filename().string(), use);
  };
  if (close == std::string::npos || content == std::string::npos || !IsMapName(name, MapExtension(use)) ||
      !ReplaceFileIf(site_ / name, section.substr(content), loads)) {
    const size_t end = section.find(']');
    shell_.MsgBox("Improperly formatted map file" + std::string(kCrLf) +
                      section.substr(0, end == std::string::npos ? std::min<size_t>(section.size(), 80) : end),
                  kCaption, MsgButtons::OK, MsgIcon::Critical);
  }
}

void clsDist::LoadRegistrySection(const std::string& section) {
  clsRegistry registry(store_);
  std::string key;
  for (const std::string& raw : SplitLines(section)) {
    const std::string line(TrimWhiteSpace(raw));
    if (line.empty() || line == "REGISTRY]") continue;
    if (line.back() == ':') {
      key = line.substr(0, line.size() - 1);
      continue;
    }
    const size_t arrow = line.find("> ");
    const size_t equals = arrow == std::string::npos ? std::string::npos : line.find('=', arrow);
    if (equals == std::string::npos) {
      shell_.MsgBox("Improperly formatted registry entry" + std::string(kCrLf) + line, kCaption,
                    MsgButtons::OK, MsgIcon::Critical);
      continue;
    }
    const std::string name(TrimWhiteSpace(std::string_view(line).substr(arrow + 2, equals - arrow - 2)));
    std::string value(TrimWhiteSpace(std::string_view(line).substr(equals + 1)));
    // One pair of outer quotation marks comes off; inner ones stay.
    if (!value.empty() && value.front() == '"') value.erase(0, 1);
    if (!value.empty() && value.back() == '"') value.pop_back();
    if (!registry.SaveValue(value, RootValuePath(key, name))) ++unsaved_;
  }
}

}  // namespace hifx
