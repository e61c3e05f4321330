// What the map editor decides apart from drawing: its caption, the entries
// of its lists, which controls a map's type and a field's mapping enable,
// the file name a typed map name becomes, and what its buttons do to the map.
//
// The editor has no format knowledge of its own: every change goes into the
// clsExchMap being edited, and the map saves and deletes its own file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Shell.h"
#include "maps/clsExchMap.h"

namespace hifx::shell {

// One entry of a list: its text and the code it stands for.
struct MapListItem {
  std::string text;
  int32_t data = 0;
  bool operator==(const MapListItem&) const = default;
};
using MapList = std::vector<MapListItem>;

// "Route", "ReRead", "Reading" or "Orphan"; empty for any other use.
std::string_view MapUseName(int32_t use);

// "Edit Route Map: Billing.hcm" for a map that exists, "New Route Map" for
// a new one.
std::string MapEditCaption(int32_t use, std::string_view mapName, bool isNew);

// The lists of the header.
MapList MapTypeItems(int32_t use);
MapList MapFilterItems();
MapList MapTerminatorItems();
// The delimiter and quote lists store their text, not a code.
std::vector<std::string> MapDelimiterItems();
std::vector<std::string> MapQuoteItems();
// The text a stored quote is shown with: "<none>" for none.
std::string MapQuoteShown(std::string_view quote);

// The lists of the field group.
MapList MapOptionItems(int32_t use, std::string_view fieldName);
MapList MapAlignItems();
MapList MapPadItems();
// The date codes for a date field, the time codes for a time field, nothing
// for any other type.
MapList MapFormatItems(int32_t dataType);

// The index of the first entry with the code, or -1 when there is none.
int ListIndexOf(const MapList& list, int32_t data);

// What the map's use and type make of the header and the field list.
struct MapHeaderRules {
  bool filterShown = false;       // cboMapFilter, lMapFilter
  bool lengthShown = false;       // txtMapLength, lMapLength, cboMapTerminator, lMapTerminator
  bool terminatorFilled = false;  // cboMapTerminator has entries
  bool delimiterEnabled = false;  // cboMapDelimiter, lMapDelimiter, cboMapQuote, lMapQuote
  bool mvrsShown = false;         // fraMVRS
  bool fieldsEnabled = false;     // lstMapFields, lMapFields, and the field group
  std::string positionCaption;    // lMapPosition
  bool operator==(const MapHeaderRules&) const = default;
};
MapHeaderRules HeaderRules(int32_t use, int32_t type);

// Which controls of the field group, each with its label, are enabled.
struct MapFieldRules {
  bool option = false;
  bool position = false;
  bool width = false;
  bool constant = false;
  bool align = false;
  bool pad = false;
  bool format = false;
  bool operator==(const MapFieldRules&) const = default;
};
MapFieldRules FieldRules(int32_t type, int32_t option, int32_t dataType);

// The number a position, width or length box holds: its leading digits,
// 0 for none, at most the largest 16-bit number.
int16_t MapNumber(std::string_view text);

// The file name a typed map name becomes: ".", "\", "/" and ":" each become
// "_", as a name must stay a file name, and the use's extension follows.
// Nothing for an empty answer.
std::optional<std::string> MapNameFromAnswer(std::string_view answer, int32_t use);

// The result text of an editor whose map was deleted.
inline constexpr std::string_view kMapDeleted = "{DELETED}";

// What a button leaves behind: whether the window closes, and its result
// text: the saved map's name, "{DELETED}", or empty.
struct MapEditOutcome {
  bool close = false;
  std::string result;
  bool operator==(const MapEditOutcome&) const = default;
};

// The buttons of the editor over one map. Questions go through the shell:
// "Save Changes?" and the "Map Name" input box.
class MapEditActions {
 public:
  MapEditActions(clsExchMap& map, IShell& shell) : map_(map), shell_(shell) {}

  // By the button's key: "SAVE", "SAVEAS", "DELETE", "CLOSE".
  MapEditOutcome Action(std::string_view key);
  // Saves under the map's name, or under a name asked for when it has none
  // or when asNew.
  MapEditOutcome Save(bool asNew);
  // Asks about unsaved changes: Yes saves, No drops them and closes, Cancel
  // stays. A map without changes closes at once.
  MapEditOutcome OfferToSave();
  // Deletes the map's file; a map with a blank name has none to delete.
  MapEditOutcome Delete();

 private:
  clsExchMap& map_;
  IShell& shell_;
};

}  // namespace hifx::shell
