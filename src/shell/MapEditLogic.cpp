#include "shell/MapEditLogic.h"

#include <algorithm>
#include <limits>

#include "base/Failure.h"
#include "maps/MapCatalogues.h"

namespace hifx::shell {
namespace {

constexpr std::string_view kMappingTitle = "Mapping Information";

bool HasTerminator(int32_t use) { return use == kUseReRead || use == kUseReading || use == kUseOrphan; }

// MVRS and E5000 files have layouts of their own: no field of them is mapped
// by hand.
bool FixedLayout(int32_t type) { return type == kMapMVRS || type == kMapE5000; }

MapList ItemsOf(std::initializer_list<int32_t> codes, std::string_view (*text)(int32_t)) {
  MapList list;
  for (int32_t code : codes) list.push_back({std::string(text(code)), code});
  return list;
}

}  // namespace

std::string_view MapUseName(int32_t use) {
  switch (use) {
    case kUseRoute: return "Route";
    case kUseReRead: return "ReRead";
    case kUseReading: return "Reading";
    case kUseOrphan: return "Orphan";
    default: return {};
  }
}

std::string MapEditCaption(int32_t use, std::string_view mapName, bool isNew) {
  const std::string useName(MapUseName(use));
  if (isNew) return "New " + useName + " Map";
  return "Edit " + useName + " Map: " + std::string(mapName);
}

MapList MapTypeItems(int32_t use) {
  if (use == kUseOrphan) return ItemsOf({kMapFixed, kMapDelimited}, MapTypeText);
  return ItemsOf({kMapFixed, kMapDelimited, kMapMVRS, kMapE5000}, MapTypeText);
}

MapList MapFilterItems() { return ItemsOf({0, 1, 2, 3}, MapFilterText); }

MapList MapTerminatorItems() {
  MapList list = ItemsOf({0, 1, 2, 3}, MapTerminatorText);
  // "<null>" has always carried the code of "<crlf>" here, so choosing it
  // ends records with CR LF; only a map file written by other means holds 4.
  list.push_back({std::string(MapTerminatorText(4)), 3});
  return list;
}

std::vector<std::string> MapDelimiterItems() { return {"<tab>", ",", ";", "||"}; }

std::vector<std::string> MapQuoteItems() { return {"<none>", "\""}; }

std::string MapQuoteShown(std::string_view quote) { return quote.empty() ? "<none>" : std::string(quote); }

MapList MapOptionItems(int32_t use, std::string_view fieldName) {
  MapList list;
  for (int32_t option : OfferedMapOptions(use, fieldName)) list.push_back({std::string(MapOptionText(option)), option});
  return list;
}

MapList MapAlignItems() { return {{"Left", 1}, {"Right", 2}}; }

MapList MapPadItems() { return {{"Zeros", 1}, {"Spaces", 2}}; }

MapList MapFormatItems(int32_t dataType) {
  if (dataType == kTypeDate) {
    return ItemsOf({20, 21, 22, 24, 25, 26, 10, 11, 12, 14, 15, 16, 30, 31, 32, 34, 35, 36}, MapFormatText);
  }
  if (dataType == kTypeTime) return ItemsOf({40, 42, 41, 43}, MapFormatText);
  return {};
}

int ListIndexOf(const MapList& list, int32_t data) {
  const auto found = std::find_if(list.begin(), list.end(), [data](const MapListItem& item) { return item.data == data; });
  return found == list.end() ? -1 : static_cast<int>(found - list.begin());
}

MapHeaderRules HeaderRules(int32_t use, int32_t type) {
  MapHeaderRules rules;
  rules.filterShown = use == kUseReading;
  rules.terminatorFilled = HasTerminator(use);
  rules.lengthShown = HasTerminator(use) && !FixedLayout(type);
  rules.delimiterEnabled = type == kMapDelimited;
  rules.mvrsShown = use == kUseRoute && type == kMapMVRS;
  rules.fieldsEnabled = !FixedLayout(type);
  rules.positionCaption = type == kMapDelimited ? "Position" : "Column";
  return rules;
}

MapFieldRules FieldRules(int32_t type, int32_t option, int32_t dataType) {
  MapFieldRules rules;
  if (FixedLayout(type)) return rules;
  const bool placed = option == kOptionSource || option == kOptionDestination;
  const bool output = option == kOptionDestination && type == kMapFixed;
  rules.option = true;
  rules.position = placed;
  rules.width = placed && type == kMapFixed;
  rules.constant = option == kOptionConstant;
  rules.align = output;
  rules.pad = output;
  rules.format = placed && (dataType == kTypeDate || dataType == kTypeTime);
  return rules;
}

int16_t MapNumber(std::string_view text) {
  int32_t value = 0;
  for (char c : text) {
    if (c < '0' || c > '9') break;
    value = std::min<int32_t>(value * 10 + (c - '0'), std::numeric_limits<int16_t>::max());
  }
  return static_cast<int16_t>(value);
}

std::optional<std::string> MapNameFromAnswer(std::string_view answer, int32_t use) {
  if (answer.empty()) return std::nullopt;
  std::string name(answer);
  std::replace_if(name.begin(), name.end(), [](char c) { return c == '.' || c == '\\' || c == '/' || c == ':'; }, '_');
  return name + MapExtension(use);
}

MapEditOutcome MapEditActions::Action(std::string_view key) {
  if (key == "SAVE") return Save(false);
  if (key == "SAVEAS") return Save(true);
  if (key == "DELETE") return Delete();
  if (key == "CLOSE") return OfferToSave();
  return {};
}

MapEditOutcome MapEditActions::Save(bool asNew) {
  if (map_.MapName().empty() || asNew) {
    const std::optional<std::string> answer = shell_.InputBox("Map Name", "Save Map", "");
    const std::optional<std::string> name = MapNameFromAnswer(answer.value_or(""), map_.MapUse());
    if (!name) return {};
    map_.SetMapName(*name);
  }
  try {
    if (!map_.SaveMap()) return {};
  } catch (const Failure& failure) {
    // A map that can't be written stays open with its changes.
    shell_.MsgBox(failure.Description(), kMappingTitle, MsgButtons::OK, MsgIcon::Critical);
    return {};
  }
  map_.SetDirty(false);
  return {true, map_.MapName()};
}

MapEditOutcome MapEditActions::OfferToSave() {
  if (!map_.Dirty()) return {true, {}};
  switch (shell_.MsgBox("Save Changes?", kMappingTitle, MsgButtons::YesNoCancel, MsgIcon::Question)) {
    case MsgAnswer::Yes: return Save(false);
    case MsgAnswer::No: map_.SetDirty(false); return {true, {}};
    default: return {};
  }
}

MapEditOutcome MapEditActions::Delete() {
  if (map_.MapName().find_first_not_of(' ') == std::string::npos) return {};
  try {
    map_.DeleteMap();
  } catch (const Failure& failure) {
    shell_.MsgBox(failure.Description(), kMappingTitle, MsgButtons::OK, MsgIcon::Critical);
    return {};
  }
  return {true, std::string(kMapDeleted)};
}

}  // namespace hifx::shell
