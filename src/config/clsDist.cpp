#include "config/clsDist.h"

#include <algorithm>

#include "base/AtomicFile.h"
#include "base/BinaryFile.h"
#include "base/CaseBlind.h"
#include "base/Failure.h"
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

// Splits at every line break followed by "[", the "[" going with the break.
// A text with no CR LF at all splits at LF, so files edited elsewhere load.
std::vector<std::string> SplitSections(const std::string& text) {
  const std::string separator = text.find("\r\n") != std::string::npos ? "\r\n[" : "\n[";
  std::vector<std::string> sections;
  size_t start = 0;
  for (;;) {
    const size_t at = text.find(separator, start);
    if (at == std::string::npos) {
      sections.push_back(text.substr(start));
      return sections;
    }
    sections.push_back(text.substr(start, at - start));
    start = at + separator.size();
  }
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
  const std::string text = ReadWholeFile(path);
  const std::vector<std::string> sections = SplitSections(text);
  // Only the five characters are looked at, not the version.
  if (!StartsWith(sections.front(), "DIST ")) {
    shell_.MsgBox("Distribution file not properly formatted", kCaption, MsgButtons::OK,
                  MsgIcon::Critical);
    return false;
  }
  for (size_t i = 1; i < sections.size(); ++i) {
    const std::string& section = sections[i];
    const std::string head = UpperCase(section.substr(0, 16));
    if (StartsWith(head, "ROUTE MAP")) {
      LoadMapSection(section, kUseRoute);
    } else if (StartsWith(head, "READING MAP")) {
      LoadMapSection(section, kUseReading);
    } else if (StartsWith(head, "ORPHAN MAP")) {
      LoadMapSection(section, kUseOrphan);
    } else if (StartsWith(head, "REGISTRY")) {
      LoadRegistrySection(section);
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
