// One conversion map in memory: a small header and the field catalogue of
// its use, read from and written to the map files of one site folder.
//
// The catalogue is built in per use by NewMap; a map file only says how each
// field is mapped. Files are CR LF text of KEY=value lines.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/CaseBlind.h"

namespace hifx {

// Map uses, as the exchange numbers them.
// The version a map file written here carries on its first line.
inline constexpr const char* kMapFileVersion = "1.1";

inline constexpr int32_t kUseRoute = 1;
inline constexpr int32_t kUseReRead = 2;
inline constexpr int32_t kUseReading = 3;
inline constexpr int32_t kUseOrphan = 99;

// Map file types.
inline constexpr int32_t kMapFixed = 1;
inline constexpr int32_t kMapDelimited = 2;
inline constexpr int32_t kMapMVRS = 3;
inline constexpr int32_t kMapE5000 = 4;

// How a field is mapped.
inline constexpr int32_t kOptionDoNotMap = 1;
inline constexpr int32_t kOptionSource = 2;
inline constexpr int32_t kOptionConstant = 3;
inline constexpr int32_t kOptionPrompt = 4;
inline constexpr int32_t kOptionDestination = 5;
inline constexpr int32_t kOptionAutonumber = 6;

// Field data types.
inline constexpr int32_t kTypeText = 0;
inline constexpr int32_t kTypeInteger = 1;
inline constexpr int32_t kTypeLong = 2;
inline constexpr int32_t kTypeNumber = 3;
inline constexpr int32_t kTypeDate = 4;
inline constexpr int32_t kTypeTime = 5;

// The largest numbered option slot; option numbers come from files.
inline constexpr int32_t kMaxMapOptions = 255;
// The largest map file LoadMap reads.
inline constexpr uint64_t kMaxMapFileSize = 1024 * 1024;

// ".hcm" for route and re-read, ".hrm" for reading, ".hom" for orphan maps,
// empty for anything else.
std::string MapExtension(int32_t use);

struct MapField {
  std::string FieldName;
  int32_t DataType = kTypeText;
  bool Required = false;
  int32_t MapOption = kOptionDoNotMap;
  int16_t DataPosition = 0;
  int16_t DataWidth = 0;
  std::string MapConstant;
  int32_t MapAlign = 0;
  int32_t MapPad = 0;
  double MaxValue = 0.0;
  double MinValue = 0.0;
  std::string Prompt;
  int32_t MapFormat = 0;
};

// A field of a map: its 1-based position, or its name in any case. Only for
// passing as an argument; a name is not copied.
class MapIndex {
 public:
  MapIndex(int32_t position) : position_(position) {}                      // NOLINT
  MapIndex(std::string_view name) : name_(name), byName_(true) {}          // NOLINT
  MapIndex(const char* name) : MapIndex(std::string_view(name)) {}         // NOLINT
  MapIndex(const std::string& name) : MapIndex(std::string_view(name)) {}  // NOLINT

  bool ByName() const { return byName_; }
  int32_t Position() const { return position_; }
  std::string_view Name() const { return name_; }
  // The index as a message shows it.
  std::string Text() const;

 private:
  int32_t position_ = 0;
  std::string_view name_;
  bool byName_ = false;
};

class clsExchMap {
 public:
  // folder: where the map files lie (the site folder).
  explicit clsExchMap(std::filesystem::path folder);

  const std::filesystem::path& Folder() const { return folder_; }

  // Header. Every set raises Dirty.
  const std::string& MapName() const { return mapName_; }
  void SetMapName(std::string name);
  int32_t MapType() const { return mapType_; }
  void SetMapType(int32_t type);
  int32_t MapUse() const { return mapUse_; }
  void SetMapUse(int32_t use);
  const std::string& MapDelimiter() const { return mapDelimiter_; }
  void SetMapDelimiter(std::string delimiter);
  // A tab for "<tab>", else the delimiter as stored.
  std::string MapDelimiterChar() const;
  const std::string& MapQuote() const { return mapQuote_; }
  void SetMapQuote(std::string quote);
  int32_t MapFilter() const { return mapFilter_; }
  void SetMapFilter(int32_t filter);
  int16_t MapLength() const { return mapLength_; }
  void SetMapLength(int16_t length);
  int32_t MapTerminator() const { return mapTerminator_; }
  void SetMapTerminator(int32_t terminator);
  bool Dirty() const { return dirty_; }
  void SetDirty(bool dirty) { dirty_ = dirty; }

  // Slot index (from 1), or with index 0 every non-blank slot as "n:value"
  // pairs joined by ";". A slot outside the list reads as empty.
  std::string MapOptions(int32_t index) const;
  // Stores a slot, growing the list; with index 0 parses "n:value;..." pairs.
  // A slot above kMaxMapOptions or below 0 is failure 9.
  void SetMapOptions(int32_t index, std::string_view value);

  // Catalogue.
  void AddField(int32_t dataType, std::string fieldName, bool required, double maxValue,
                double minValue, std::string prompt);
  int32_t FieldCount() const { return static_cast<int32_t>(fields_.size()); }
  // Position of a field, 0 when there is none.
  int32_t FindItem(MapIndex index) const;
  // Empty when there is no such field; "(Required)" appended when asked for
  // and the field is required.
  std::string FieldName(MapIndex index, bool withRequired = false) const;
  // The field's prompt text, or its name when it has none.
  std::string Prompt(MapIndex index, bool withRequired = false) const;

  // Per-field properties. An index with no field is failure 9; every set
  // raises Dirty.
  int32_t DataType(MapIndex index) const { return Field(index).DataType; }
  void SetDataType(MapIndex index, int32_t value);
  bool Required(MapIndex index) const { return Field(index).Required; }
  void SetRequired(MapIndex index, bool value);
  int32_t MapOption(MapIndex index) const { return Field(index).MapOption; }
  void SetMapOption(MapIndex index, int32_t value);
  int16_t DataPosition(MapIndex index) const { return Field(index).DataPosition; }
  void SetDataPosition(MapIndex index, int16_t value);
  int16_t DataWidth(MapIndex index) const { return Field(index).DataWidth; }
  void SetDataWidth(MapIndex index, int16_t value);
  const std::string& MapConstant(MapIndex index) const { return Field(index).MapConstant; }
  void SetMapConstant(MapIndex index, std::string value);
  int32_t MapAlign(MapIndex index) const { return Field(index).MapAlign; }
  void SetMapAlign(MapIndex index, int32_t value);
  int32_t MapPad(MapIndex index) const { return Field(index).MapPad; }
  void SetMapPad(MapIndex index, int32_t value);
  int32_t MapFormat(MapIndex index) const { return Field(index).MapFormat; }
  void SetMapFormat(MapIndex index, int32_t value);
  double MaxValue(MapIndex index) const { return Field(index).MaxValue; }
  // The whole field, read only.
  const MapField& Field(MapIndex index) const;
  // Every field, in the map's order.
  const std::vector<MapField>& Fields() const { return fields_; }

  // A new map of the use's catalogue; an unknown use has no fields.
  void NewMap(std::string name, int32_t use);
  // Applies one field line's parts; false when the map has no such field.
  // A position, width or format too large for its member is failure 6, and
  // the parts after it are not applied.
  bool SetMapping(std::string_view name, std::string_view p1, std::string_view p2,
                  std::string_view p3, std::string_view p4, std::string_view p5);

  // The map's file in the folder; empty for an empty name or an unknown use.
  std::filesystem::path MapFileName() const;
  // NewMap, then the file's lines. False when the file can't be read.
  // Never fails: a line that can't be applied is passed over.
  bool LoadMap(std::string name, int32_t use);
  // False, writing nothing, when MapName is empty. Replaces the old file as
  // a whole, so a failed save leaves it as it was; a failed save is a failure.
  bool SaveMap();
  // Removes the map's file; a missing one is failure 53.
  void DeleteMap() const;

  // Appends the field's problem, if any, to messages; true when it has none.
  bool MappedOK(MapIndex index, std::string& messages) const;
  // True when every field is mapped well; else messages is the report.
  bool ValidateMap(std::string& messages) const;

 private:
  MapField& MutableField(MapIndex index);
  void ApplyLine(std::string_view line);
  std::string FileText() const;

  std::filesystem::path folder_;
  std::string mapName_;
  int32_t mapType_ = 0;
  int32_t mapUse_ = 0;
  std::string mapDelimiter_;
  std::string mapQuote_;
  std::vector<std::string> mapOptions_;
  int16_t mapLength_ = 0;
  int32_t mapTerminator_ = 0;
  int32_t mapFilter_ = 0;
  bool dirty_ = false;
  std::vector<MapField> fields_;
  // First position of each name, for lookups by name.
  std::unordered_map<std::string, int32_t, CaseBlindHash, CaseBlindEqual> byName_;
};

}  // namespace hifx
