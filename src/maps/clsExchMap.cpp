#include "maps/clsExchMap.h"

#include <optional>
#include <system_error>
#include <tuple>
#include <utility>

#include "base/AtomicFile.h"
#include "base/Failure.h"
#include "base/FileNames.h"
#include "base/LineReader.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "maps/MapCatalogues.h"

namespace hifx {
namespace {

constexpr std::string_view kCrLf = "\r\n";

// The piece of text before the first separator, and what follows it.
std::pair<std::string_view, std::string_view> SplitFirst(std::string_view text, char separator) {
  const size_t at = text.find(separator);
  if (at == std::string_view::npos) return {text, {}};
  return {text.substr(0, at), text.substr(at + 1)};
}

// A line's numbered values: the text of a number as a whole, blanks around it
// allowed; anything else is a type mismatch.
double WholeNumber(std::string_view text) {
  double value = 0.0;
  if (!ParseWholeNumber(text, value)) throw Failure(fail::kTypeMismatch);
  return value;
}

// One statement of the loader: a failure skips it and loading goes on.
template <typename Statement>
void SkipOnFailure(Statement&& statement) {
  try {
    statement();
  } catch (const Failure&) {
  }
}

}  // namespace

std::string MapIndex::Text() const {
  return byName_ ? std::string(name_) : std::to_string(position_);
}

clsExchMap::clsExchMap(std::filesystem::path folder) : folder_(std::move(folder)) {}

void clsExchMap::SetMapName(std::string name) {
  mapName_ = std::move(name);
  dirty_ = true;
}

void clsExchMap::SetMapType(int32_t type) {
  mapType_ = type;
  dirty_ = true;
}

void clsExchMap::SetMapUse(int32_t use) {
  mapUse_ = use;
  dirty_ = true;
}

void clsExchMap::SetMapDelimiter(std::string delimiter) {
  mapDelimiter_ = std::move(delimiter);
  dirty_ = true;
}

std::string clsExchMap::MapDelimiterChar() const {
  return mapDelimiter_ == "<tab>" ? std::string("\t") : mapDelimiter_;
}

void clsExchMap::SetMapQuote(std::string quote) {
  mapQuote_ = std::move(quote);
  dirty_ = true;
}

void clsExchMap::SetMapFilter(int32_t filter) {
  mapFilter_ = filter;
  dirty_ = true;
}

void clsExchMap::SetMapLength(int16_t length) {
  mapLength_ = length;
  dirty_ = true;
}

void clsExchMap::SetMapTerminator(int32_t terminator) {
  mapTerminator_ = terminator;
  dirty_ = true;
}

std::string clsExchMap::MapOptions(int32_t index) const {
  if (index > 0) {
    return static_cast<size_t>(index) <= mapOptions_.size() ? mapOptions_[static_cast<size_t>(index - 1)]
                                                            : std::string();
  }
  if (index < 0) return {};
  std::string joined;
  for (size_t slot = 0; slot < mapOptions_.size(); ++slot) {
    if (Trim(mapOptions_[slot]).empty()) continue;
    if (!joined.empty()) joined.push_back(';');
    joined += std::to_string(slot + 1) + ":" + mapOptions_[slot];
  }
  return joined;
}

void clsExchMap::SetMapOptions(int32_t index, std::string_view value) {
  if (index < 0 || index > kMaxMapOptions) throw Failure(fail::kSubscript);
  dirty_ = true;
  if (index > 0) {
    if (mapOptions_.size() < static_cast<size_t>(index)) mapOptions_.resize(static_cast<size_t>(index));
    mapOptions_[static_cast<size_t>(index - 1)] = std::string(value);
    return;
  }
  std::string_view rest = value;
  for (bool more = true; more;) {
    more = rest.find(';') != std::string_view::npos;
    const auto [piece, next] = SplitFirst(rest, ';');
    rest = next;
    const auto [number, tail] = SplitFirst(piece, ':');
    const int32_t slot = ToInt32(NumericPrefix(number));
    if (slot > 0) SetMapOptions(slot, SplitFirst(tail, ':').first);
  }
}

void clsExchMap::AddField(int32_t dataType, std::string fieldName, bool required, double maxValue,
                          double minValue, std::string prompt) {
  MapField field;
  field.FieldName = std::move(fieldName);
  field.DataType = dataType;
  field.Required = required;
  field.MaxValue = maxValue;
  field.MinValue = minValue;
  field.Prompt = std::move(prompt);
  fields_.push_back(std::move(field));
  byName_.emplace(fields_.back().FieldName, FieldCount());
}

int32_t clsExchMap::FindItem(MapIndex index) const {
  if (index.ByName()) {
    const auto it = byName_.find(index.Name());
    return it == byName_.end() ? 0 : it->second;
  }
  return index.Position() >= 1 && index.Position() <= FieldCount() ? index.Position() : 0;
}

std::string clsExchMap::FieldName(MapIndex index, bool withRequired) const {
  const int32_t at = FindItem(index);
  if (at == 0) return {};
  const MapField& field = fields_[static_cast<size_t>(at - 1)];
  return field.FieldName + (withRequired && field.Required ? "(Required)" : "");
}

std::string clsExchMap::Prompt(MapIndex index, bool withRequired) const {
  const int32_t at = FindItem(index);
  if (at == 0) return {};
  const MapField& field = fields_[static_cast<size_t>(at - 1)];
  return (field.Prompt.empty() ? field.FieldName : field.Prompt) +
         (withRequired && field.Required ? "(Required)" : "");
}

const MapField& clsExchMap::Field(MapIndex index) const {
  const int32_t at = FindItem(index);
  if (at == 0) throw Failure(fail::kSubscript);
  return fields_[static_cast<size_t>(at - 1)];
}

MapField& clsExchMap::MutableField(MapIndex index) {
  const int32_t at = FindItem(index);
  if (at == 0) throw Failure(fail::kSubscript);
  dirty_ = true;
  return fields_[static_cast<size_t>(at - 1)];
}

void clsExchMap::SetDataType(MapIndex index, int32_t value) {
  MutableField(index).DataType = value;
}
void clsExchMap::SetRequired(MapIndex index, bool value) { MutableField(index).Required = value; }
void clsExchMap::SetMapOption(MapIndex index, int32_t value) {
  MutableField(index).MapOption = value;
}
void clsExchMap::SetDataPosition(MapIndex index, int16_t value) {
  MutableField(index).DataPosition = value;
}
void clsExchMap::SetDataWidth(MapIndex index, int16_t value) {
  MutableField(index).DataWidth = value;
}
void clsExchMap::SetMapConstant(MapIndex index, std::string value) {
  MutableField(index).MapConstant = std::move(value);
}
void clsExchMap::SetMapAlign(MapIndex index, int32_t value) {
  MutableField(index).MapAlign = value;
}
void clsExchMap::SetMapPad(MapIndex index, int32_t value) { MutableField(index).MapPad = value; }
void clsExchMap::SetMapFormat(MapIndex index, int32_t value) {
  MutableField(index).MapFormat = value;
}

void clsExchMap::NewMap(std::string name, int32_t use) {
  // The sets below raise Dirty again, so a new map is offered for saving.
  dirty_ = false;
  SetMapUse(use);
  SetMapName(std::move(name));
  SetMapType(0);
  fields_.clear();
  byName_.clear();
  for (const CatalogueEntry& entry : MapCatalogue(use)) {
    AddField(entry.DataType, std::string(entry.FieldName), entry.Required, entry.MaxValue,
             entry.MinValue, std::string(entry.Prompt));
  }
  if (use == kUseReading || use == kUseOrphan) SetMapTerminator(3);
}

bool clsExchMap::SetMapping(std::string_view name, std::string_view p1, std::string_view p2,
                            std::string_view p3, std::string_view p4, std::string_view p5) {
  const int32_t at = FindItem(name);
  if (at == 0) return false;
  MapField& field = fields_[static_cast<size_t>(at - 1)];
  auto mapWithoutSource = [&field](int32_t option, std::string_view constant) {
    field.DataPosition = 0;
    field.DataWidth = 0;
    field.MapConstant = std::string(constant);
    field.MapOption = option;
  };
  if (p1 == "N") {
    mapWithoutSource(kOptionDoNotMap, {});
  } else if (p1 == "P") {
    mapWithoutSource(kOptionPrompt, {});
  } else if (p1 == "C") {
    mapWithoutSource(kOptionConstant, p2);
  } else if (p1 == "A") {
    mapWithoutSource(kOptionAutonumber, {});
  } else {
    // One member after another: a number that overflows stops the line there.
    field.DataPosition = ToInt16(NumericPrefix(p1));
    field.DataWidth = ToInt16(NumericPrefix(p2));
    field.MapOption =
        (mapUse_ == kUseRoute || mapUse_ == kUseReRead) ? kOptionSource : kOptionDestination;
    field.MapAlign = p3 == "L" ? 1 : 2;
    field.MapPad = p4 == "Z" ? 1 : 2;
    field.MapFormat = ToInt32(NumericPrefix(p5));
  }
  return true;
}

std::filesystem::path clsExchMap::MapFileName() const {
  // A map is named, never pathed: its file lies in the site folder.
  if (mapName_.empty() || HasFolderPart(mapName_)) return {};
  if (mapUse_ != kUseRoute && mapUse_ != kUseReRead && mapUse_ != kUseReading &&
      mapUse_ != kUseOrphan) {
    return {};
  }
  // Joined as text, so a name can't make itself an absolute path.
  std::filesystem::path file = folder_.empty() ? std::filesystem::path(".") : folder_;
  file += std::filesystem::path::preferred_separator;
  file += mapName_;
  return file;
}

bool clsExchMap::LoadMap(std::string name, int32_t use) {
  NewMap(std::move(name), use);
  const std::filesystem::path file = MapFileName();
  if (file.empty()) return false;
  std::optional<LineReader> reader;
  try {
    reader.emplace(file);
  } catch (const Failure&) {
    return false;
  }
  if (reader->Size() > kMaxMapFileSize) return false;
  std::string line;
  try {
    // The cap holds for a file that grows while it is read, too.
    while (reader->Position() <= kMaxMapFileSize && reader->ReadLine(line)) ApplyLine(line);
  } catch (const Failure&) {
    // a read that fails part way ends the file
  }
  dirty_ = false;
  return true;
}

void clsExchMap::ApplyLine(std::string_view line) {
  if (line.empty() || line.front() == '#' || Trim(line).empty()) return;
  // Only the first two pieces count: a second "=" and all behind it are lost.
  const auto [rawKey, afterKey] = SplitFirst(line, '=');
  const std::string_view key = Trim(rawKey);
  const std::string_view value = Trim(SplitFirst(afterKey, '=').first);
  if (key == "MAPNAME" || key == "HIF") return;
  if (key == "MAPTYPE") {
    SkipOnFailure([&] { SetMapType(ToInt32(NumericPrefix(value))); });
  } else if (key == "MAPFILTER") {
    SkipOnFailure([&] { SetMapFilter(ToInt32(WholeNumber(value))); });
  } else if (key == "MAPDELIMITER") {
    SetMapDelimiter(std::string(value));
  } else if (key == "MAPQUOTE") {
    SetMapQuote(value == "<none>" ? std::string() : std::string(value));
  } else if (key == "MAPTERMINATOR") {
    SkipOnFailure([&] { SetMapTerminator(ToInt32(WholeNumber(value))); });
  } else if (key == "MAPLENGTH") {
    SkipOnFailure([&] { SetMapLength(ToInt16(WholeNumber(value))); });
  } else if (key == "MAPOPTIONS") {
    SkipOnFailure([&] { SetMapOptions(0, value); });
  } else {
    std::string_view parts[5];
    std::string_view rest = value;
    for (auto& part : parts) {
      std::tie(part, rest) = SplitFirst(rest, ',');
    }
    // A field of another catalogue, or a key in the wrong case, is dropped.
    SkipOnFailure([&] { SetMapping(key, parts[0], parts[1], parts[2], parts[3], parts[4]); });
  }
}

std::string clsExchMap::FileText() const {
  std::string text;
  auto line = [&text](std::string_view a, std::string_view b = {}) {
    text.append(a).append(b).append(kCrLf);
  };
  line("HIF=", kMapFileVersion);
  line("MAPNAME=", mapName_);
  line("MAPTYPE=", std::to_string(mapType_));
  line("MAPFILTER=", std::to_string(mapFilter_));
  line("MAPDELIMITER=", mapDelimiter_);
  line("MAPQUOTE=", mapQuote_);
  if (!mapOptions_.empty()) line("MAPOPTIONS=", MapOptions(0));
  // The blanks round the terminator are those of the old number printing;
  // readers trim them.
  line("MAPTERMINATOR=", " " + std::to_string(mapTerminator_) + " ");
  line("MAPLENGTH=", std::to_string(mapLength_));
  for (const MapField& f : fields_) {
    const std::string position = std::to_string(f.DataPosition) + "," + std::to_string(f.DataWidth);
    switch (f.MapOption) {
      case kOptionDoNotMap: line(f.FieldName, "=N"); break;
      case kOptionSource:
        line(f.FieldName, "=" + position + ",,," + std::to_string(f.MapFormat));
        break;
      case kOptionConstant: line(f.FieldName, "=C," + f.MapConstant); break;
      case kOptionPrompt: line(f.FieldName, "=P"); break;
      case kOptionDestination:
        line(f.FieldName, "=" + position + "," + (f.MapAlign == 1 ? "L" : "R") + "," +
                              (f.MapPad == 2 ? "B" : "Z") + "," + std::to_string(f.MapFormat));
        break;
      case kOptionAutonumber: line(f.FieldName, "=A"); break;
      default: break;  // an option of no known form writes no line
    }
  }
  return text;
}

bool clsExchMap::SaveMap() {
  if (mapName_.empty()) return false;
  const std::filesystem::path file = MapFileName();
  if (file.empty()) throw Failure(fail::kBadFileName);
  ReplaceFile(file, FileText());
  dirty_ = false;
  return true;
}

void clsExchMap::DeleteMap() const {
  const std::filesystem::path file = MapFileName();
  if (file.empty()) throw Failure(fail::kBadFileName);
  std::error_code ec;
  if (!std::filesystem::is_regular_file(file, ec)) {
    throw Failure(FailureKind::MissingInput, fail::kFileNotFound, "File not found:", file);
  }
  if (!std::filesystem::remove(file, ec) || ec) {
    throw Failure(FailureKind::BadInput, fail::kPathAccess, "Path/File access error:", file);
  }
}

bool clsExchMap::MappedOK(MapIndex index, std::string& messages) const {
  std::string problem;
  const int32_t at = FindItem(index);
  if (at == 0) {
    problem = "Mapping of " + index.Text() + " not complete";
  } else {
    const MapField& f = fields_[static_cast<size_t>(at - 1)];
    const int32_t option = f.MapOption;
    const bool fromFile = option == kOptionSource || option == kOptionDestination;
    if (f.Required && option != kOptionSource && option != kOptionConstant &&
        option != kOptionPrompt && option != kOptionAutonumber) {
      problem = "Mapping of " + f.FieldName + " is required";
    } else if (option == kOptionConstant && f.MapConstant.empty()) {
      problem = "Constant missing for " + f.FieldName;
    } else if (fromFile && f.DataPosition < 1) {
      problem = "Position of " + f.FieldName + " is required";
    } else if (fromFile && mapType_ == kMapFixed && f.DataWidth < 1) {
      problem = "Width of " + f.FieldName + " is required";
    } else if (option == kOptionDestination &&
               (f.DataType == kTypeDate || f.DataType == kTypeTime) && f.MapFormat == 0) {
      // Output maps only: a source date with no format passes, on purpose.
      problem = "Date/Time format missing for " + f.FieldName;
    }
  }
  if (problem.empty()) return true;
  messages.append("\t").append(problem).append(kCrLf);
  return false;
}

bool clsExchMap::ValidateMap(std::string& messages) const {
  std::string collected;
  for (int32_t at = 1; at <= FieldCount(); ++at) MappedOK(at, collected);
  if (collected.empty()) return true;
  messages = "Mapping Errors found:" + std::string(kCrLf) + collected;
  return false;
}

std::string MapExtension(int32_t use) {
  switch (use) {
    case kUseRoute:
    case kUseReRead: return ".hcm";  // route and re-read share their maps
    case kUseReading: return ".hrm";
    case kUseOrphan: return ".hom";
    default: return {};
  }
}

}  // namespace hifx
