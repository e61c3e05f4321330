// What the advanced window and its record dialogs decide apart from drawing:
// the rows each list shows, the checks of each record dialog, and the rows
// of the favourites window.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/clsAdvanced.h"

namespace hifx::shell {

// The site's lists as the advanced window shows them.
enum class SiteList { Logins, Messages, Changeouts, Skips, Tokens, Favorites };

struct ListRow {
  std::string key;    // what the record dialog is opened on
  std::string shown;  // the columns, joined by a tab
};

// The records of a list (of the type for messages, changeouts and tokens),
// walked by position from 1 until there is none; deleted records, whose key
// reads empty, are passed over.
std::vector<ListRow> ListRows(clsAdvanced& advanced, SiteList list, std::string_view type = {});

// The record dialogs: their window names, fields and messages.
struct RecordField {
  std::string name;      // the field's control
  std::string label;
  std::string required;  // the message when it is left blank
};

struct RecordDialog {
  std::string window;  // frmAdvLogin, ...
  std::string caption;
  std::vector<RecordField> fields;  // the key field first
  std::string duplicate;            // the message for a key already there
  std::string deleteCaption;        // the caption of "Are you sure?"
};

const RecordDialog& RecordDialogOf(SiteList list);

// The check of a dialog's OK, in the order of its fields: the index of the
// first field left blank (trimmed) and its message; in Add mode also a key
// the list has already, in any case. Nothing when the record may be saved.
struct RecordProblem {
  size_t field;
  std::string message;
};
std::optional<RecordProblem> CheckRecord(clsAdvanced& advanced, SiteList list, std::string_view type,
                                         const std::vector<std::string>& values, bool adding);

// What a closed record dialog does to the store: "Save" adds in Add mode and
// updates otherwise, "Delete" deletes, "Cancel" nothing. values as the
// dialog's fields; logins carry the rights as a third value, messages the
// route, the ID and the text.
void ApplyRecord(clsAdvanced& advanced, SiteList list, std::string_view type, const std::string& result,
                 bool adding, const std::vector<std::string>& values);

// The stored record of the key, as the dialog's values (see ApplyRecord);
// empty values for a key the list doesn't have.
std::vector<std::string> RecordValues(clsAdvanced& advanced, SiteList list, std::string_view type,
                                      const std::string& key);

// A message's key: route, "||" and the ID; "ANY" for every route.
std::string MessageKey(std::string_view route, std::string_view id);
// The label of a message's ID, which follows the message type.
std::string MessageIdLabel(std::string_view type);

// The favourites window's rows: unit ID, the reading file's date, the path.
struct FavoriteRow {
  std::string unit;
  std::string date;  // short date, "[File Not Found]" or "[No Path set]"
  std::string path;
};
std::vector<FavoriteRow> FavoriteRows(clsAdvanced& advanced);

// The Favorites tab's rows: the stored favourites, then each known unit that
// has none, with an empty path.
std::vector<ListRow> FavoriteTabRows(clsAdvanced& advanced, const std::vector<std::string>& units);

// True when some favourite has a path; without one, favourites can't be used.
bool AnyFavoritePath(clsAdvanced& advanced);

}  // namespace hifx::shell
