#include "shell/AdvancedLogic.h"

#include <chrono>
#include <functional>
#include <system_error>

#include "base/CaseBlind.h"
#include "base/Clock.h"
#include "base/Text.h"

namespace hifx::shell {
namespace {

constexpr const char* kTab = "\t";

// One record of a list by position: its key and what it shows; an empty key
// for a deleted record; nothing past the end.
using RecordAt = std::function<bool(int16_t position, ListRow& row)>;

RecordAt RecordsOf(clsAdvanced& advanced, SiteList list, std::string_view type) {
  const std::string kind(type);
  switch (list) {
    case SiteList::Logins:
      return [&advanced](int16_t at, ListRow& row) {
        std::string password, rights;
        if (advanced.GetLogin(Value::Integer(at), row.key, password, rights) < 0) return false;
        row.shown = row.key;
        return true;
      };
    case SiteList::Messages:
      return [&advanced, kind](int16_t at, ListRow& row) {
        std::string route, id, message;
        if (advanced.GetMessage(kind, Value::Integer(at), route, id, message) < 0) return false;
        row.key = route.empty() && id.empty() ? std::string() : MessageKey(route, id);
        row.shown = row.key + kTab + message;
        return true;
      };
    case SiteList::Changeouts:
      return [&advanced, kind](int16_t at, ListRow& row) {
        std::string description;
        if (advanced.GetChangeout(kind, Value::Integer(at), row.key, description) < 0) return false;
        row.shown = row.key + kTab + description;
        return true;
      };
    case SiteList::Skips:
      return [&advanced](int16_t at, ListRow& row) {
        std::string reason;
        if (advanced.GetSkip(Value::Integer(at), row.key, reason) < 0) return false;
        row.shown = row.key + kTab + reason;
        return true;
      };
    case SiteList::Tokens:
      return [&advanced, kind](int16_t at, ListRow& row) {
        if (advanced.GetToken(kind, Value::Integer(at), row.key) < 0) return false;
        row.shown = row.key;
        return true;
      };
    case SiteList::Favorites:
      break;
  }
  return [&advanced](int16_t at, ListRow& row) {
    std::string path;
    if (advanced.GetFavorite(Value::Integer(at), row.key, path) < 0) return false;
    row.shown = row.key + kTab + path;
    return true;
  };
}

// The key of a dialog's values: messages are keyed by route and ID.
std::string KeyOf(SiteList list, const std::vector<std::string>& values) {
  if (list == SiteList::Messages) return MessageKey(values.at(0), values.at(1));
  return values.at(0);
}

}  // namespace

std::string MessageKey(std::string_view route, std::string_view id) {
  return std::string(route) + "||" + std::string(id);
}

std::vector<ListRow> ListRows(clsAdvanced& advanced, SiteList list, std::string_view type) {
  const RecordAt recordAt = RecordsOf(advanced, list, type);
  std::vector<ListRow> rows;
  ListRow row;
  for (int16_t at = 1; at > 0 && recordAt(at, row); ++at) {
    if (!row.key.empty()) rows.push_back(row);
  }
  return rows;
}

const RecordDialog& RecordDialogOf(SiteList list) {
  static const RecordDialog kLogin{"frmAdvLogin", "Login",
                                   {{"cLoginID", "Login ID:", "Login ID is required"}, {"cPassword", "Password:", "Password is required"}},
                                   "Already have a login with this ID", "Delete Login"};
  static const RecordDialog kMessage{"frmAdvMessage", "Message",
                                     {{"cRouteNbr", "Route Nbr:", "Route Nbr or (ANY) is required"},
                                      {"cMeterID", "Account Number:", " is required"},
                                      {"cMessage", "Message:", "Message is required"}},
                                     "Already have a Message with this ID", "Delete Message"};
  static const RecordDialog kChangeout{"frmAdvChangeout", "Changeout",
                                       {{"cCode", "Code:", "Code is required"}, {"cDescription", "Description:", "Description is required"}},
                                       "Already have this Code", "Delete Changeout"};
  // "PathName" is the word the reason's message has always used.
  static const RecordDialog kSkip{"frmAdvSkip", "Skip Code",
                                  {{"cCode", "Code:", "Code is required"}, {"cPathName", "Reason Skipped:", "PathName is required"}},
                                  "Already have this Code", "Delete Skip"};
  static const RecordDialog kToken{"frmAdvToken", "Token", {{"cToken", "Token:", "Address Token is required"}},
                                   "Already have this Token", "Delete Token"};
  static const RecordDialog kFavorite{"frmAdvFavorite", "Favorite",
                                      {{"cUnitID", "UnitID:", "UnitID is required"}, {"cPathName", "PathName:", "PathName is required"}},
                                      "Already have this UnitID", "Delete Favorite"};
  switch (list) {
    case SiteList::Logins:
      return kLogin;
    case SiteList::Messages:
      return kMessage;
    case SiteList::Changeouts:
      return kChangeout;
    case SiteList::Skips:
      return kSkip;
    case SiteList::Tokens:
      return kToken;
    case SiteList::Favorites:
      break;
  }
  return kFavorite;
}

std::optional<RecordProblem> CheckRecord(clsAdvanced& advanced, SiteList list, std::string_view type,
                                         const std::vector<std::string>& values, bool adding) {
  const RecordDialog& dialog = RecordDialogOf(list);
  for (size_t i = 0; i < dialog.fields.size(); ++i) {
    if (i < values.size() && !Trim(values[i]).empty()) continue;
    std::string message = dialog.fields[i].required;
    // The ID's message starts with the ID's own label, which follows the type.
    if (list == SiteList::Messages && i == 1) message = MessageIdLabel(type) + message;
    return RecordProblem{i, message};
  }
  if (adding) {
    std::vector<std::string> trimmed;
    for (const std::string& value : values) trimmed.emplace_back(Trim(value));
    // The list's own lookup by key, blind to case and to deleted records.
    if (!RecordValues(advanced, list, type, KeyOf(list, trimmed)).at(0).empty()) {
      return RecordProblem{0, dialog.duplicate};
    }
  }
  return std::nullopt;
}

std::vector<std::string> RecordValues(clsAdvanced& advanced, SiteList list, std::string_view type,
                                      const std::string& key) {
  std::string a, b, c;
  switch (list) {
    case SiteList::Logins:
      if (advanced.GetLogin(Value(key), a, b, c) < 0) return {"", "", ""};
      return {a, b, c};
    case SiteList::Messages:
      if (advanced.GetMessage(type, Value(key), a, b, c) < 0) return {"", "", ""};
      return {a, b, c};
    case SiteList::Changeouts:
      if (advanced.GetChangeout(type, Value(key), a, b) < 0) return {"", ""};
      return {a, b};
    case SiteList::Skips:
      if (advanced.GetSkip(Value(key), a, b) < 0) return {"", ""};
      return {a, b};
    case SiteList::Tokens:
      if (advanced.GetToken(type, Value(key), a) < 0) return {""};
      return {a};
    case SiteList::Favorites:
      break;
  }
  if (advanced.GetFavorite(Value(key), a, b) < 0) return {"", ""};
  return {a, b};
}

std::string MessageIdLabel(std::string_view type) {
  if (UpperCase(type) == "SERIALNBR") return "Meter Serial Nbr";
  if (UpperCase(type) == "TAGNBR") return "Meter Tag Nbr";
  return "Account Number";
}

void ApplyRecord(clsAdvanced& advanced, SiteList list, std::string_view type, const std::string& result,
                 bool adding, const std::vector<std::string>& values) {
  if (result != "Save" && result != "Delete") return;
  const bool remove = result == "Delete";
  const auto at = [&values](size_t i) { return i < values.size() ? std::string(Trim(values[i])) : std::string(); };
  switch (list) {
    case SiteList::Logins:
      if (remove) advanced.DeleteLogin(at(0));
      else if (adding) advanced.AddLogin(at(0), at(1), at(2));
      else advanced.UpdateLogin(at(0), at(1), at(2));
      return;
    case SiteList::Messages:
      if (remove) advanced.DeleteMessage(type, at(0), at(1));
      else if (adding) advanced.AddMessage(type, at(0), at(1), at(2));
      else advanced.UpdateMessage(type, at(0), at(1), at(2));
      return;
    case SiteList::Changeouts:
      if (remove) advanced.DeleteChangeout(type, at(0));
      else if (adding) advanced.AddChangeout(type, at(0), at(1));
      else advanced.UpdateChangeout(type, at(0), at(1));
      return;
    case SiteList::Skips:
      if (remove) advanced.DeleteSkip(at(0));
      else if (adding) advanced.AddSkip(at(0), at(1));
      else advanced.UpdateSkip(at(0), at(1));
      return;
    case SiteList::Tokens:
      // A token is its own key: there is nothing of it to update.
      if (remove) advanced.DeleteToken(type, at(0));
      else if (adding) advanced.AddToken(type, at(0));
      return;
    case SiteList::Favorites:
      if (remove) advanced.DeleteFavorite(at(0));
      else if (adding) advanced.AddFavorite(at(0), at(1));
      else advanced.UpdateFavorite(at(0), at(1));
      return;
  }
}

std::vector<FavoriteRow> FavoriteRows(clsAdvanced& advanced) {
  std::vector<FavoriteRow> rows;
  std::string unit, path;
  for (int16_t at = 1; at > 0 && advanced.GetFavorite(Value::Integer(at), unit, path) >= 0; ++at) {
    if (unit.empty()) continue;
    FavoriteRow row{unit, {}, path};
    std::error_code ec;
    const auto written = path.empty() ? std::filesystem::file_time_type() : std::filesystem::last_write_time(path, ec);
    if (path.empty()) {
      row.date = "[No Path set]";
    } else if (ec) {
      row.date = "[File Not Found]";
    } else {
      const auto seconds = std::chrono::system_clock::to_time_t(std::chrono::file_clock::to_sys(written));
      row.date = ShortDate(LocalTimeOf(seconds));
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

std::vector<ListRow> FavoriteTabRows(clsAdvanced& advanced, const std::vector<std::string>& units) {
  std::vector<ListRow> rows = ListRows(advanced, SiteList::Favorites);
  for (const std::string& unit : units) {
    bool known = false;
    for (const ListRow& row : rows) known = known || UpperCase(row.key) == UpperCase(unit);
    if (!known) rows.push_back({unit, unit + kTab});
  }
  return rows;
}

bool AnyFavoritePath(clsAdvanced& advanced) {
  for (const FavoriteRow& row : FavoriteRows(advanced)) {
    if (!row.path.empty()) return true;
  }
  return false;
}

}  // namespace hifx::shell
