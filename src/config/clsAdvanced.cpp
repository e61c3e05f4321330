#include "config/clsAdvanced.h"

#include <algorithm>

#include "base/CaseBlind.h"
#include "base/Failure.h"
#include "base/Numbers.h"
#include "config/RegistryRoot.h"
#include "config/clsRegistry.h"

namespace hifx {
namespace {

enum class Form { Login, Message, Token, Plain };

struct ListInfo {
  const char* key;  // the registry key of the list
  clsAdvanced::Group group;
  Form form;
};

// In the order of loading and saving.
constexpr std::array<ListInfo, 12> kListInfo = {{
    {"LoginIDs", clsAdvanced::kLogins, Form::Login},
    {"MessagesAccount", clsAdvanced::kMessages, Form::Message},
    {"MessagesMeterSerialNbr", clsAdvanced::kMessages, Form::Message},
    {"MessagesMeterTagNbr", clsAdvanced::kMessages, Form::Message},
    {"TokenAddress", clsAdvanced::kTokens, Form::Token},
    {"TokenOwner", clsAdvanced::kTokens, Form::Token},
    {"ChangeoutRC", clsAdvanced::kChangeouts, Form::Plain},
    {"ChangeoutMT", clsAdvanced::kChangeouts, Form::Plain},
    {"ChangeoutMFG", clsAdvanced::kChangeouts, Form::Plain},
    {"ChangeoutMS", clsAdvanced::kChangeouts, Form::Plain},
    {"Favorite", clsAdvanced::kFavorites, Form::Plain},
    {"Skip", clsAdvanced::kSkips, Form::Plain},
}};

constexpr std::array<const char*, 7> kAddressTokens = {"RD", "ST", "LN", "CT", "BLVD", "CIR", "AVE"};
constexpr std::array<const char*, 7> kOwnerTokens = {"CO", "INC", "OF", "THE", "LLP", "LLC", "AND"};

// Splits on "||" (no escaping) and cuts or pads to exactly two pieces.
std::pair<std::string, std::string> SplitPair(const std::string& text) {
  const size_t bar = text.find("||");
  if (bar == std::string::npos) return {text, std::string()};
  const size_t next = text.find("||", bar + 2);
  return {text.substr(0, bar),
          text.substr(bar + 2, next == std::string::npos ? std::string::npos : next - bar - 2)};
}


}  // namespace

// ---- AdvancedList

int16_t AdvancedList::Add(std::string key, std::string detail, std::string value, bool dirty) {
  if (lower_ == 0) {
    // The first record replaces the empty element at position 0.
    items_.clear();
    lower_ = 1;
  }
  const size_t position = items_.size() + 1;
  if (position > 32767) throw Failure(fail::kOverflow);
  AdvancedItem item;
  item.Index = static_cast<int16_t>(position);
  item.Key = std::move(key);
  item.Detail = std::move(detail);
  item.Value = std::move(value);
  item.Dirty = dirty;
  byKey_[item.Key].push_back(item.Index);
  keyShapes_ |= ShapeOf(item.Key);
  items_.push_back(std::move(item));
  return static_cast<int16_t>(position);
}

uint64_t AdvancedList::ShapeOf(std::string_view key) {
  const uint64_t length = uint64_t{1} << std::min<size_t>(key.size(), 31);
  const uint64_t last = key.empty() ? 1 : uint64_t{1} << (FoldCase(key.back()) & 31);
  return length | last << 32;
}

int16_t AdvancedList::FindKey(std::string_view key) const {
  if (lower_ == 0) return key.empty() ? 0 : -1;  // only the empty element
  const uint64_t shape = ShapeOf(key);
  if ((keyShapes_ & shape) != shape) return -1;
  const auto it = byKey_.find(key);
  return it == byKey_.end() || it->second.empty() ? -1 : it->second.front();
}

int16_t AdvancedList::Find(const Value& selector) const {
  if (selector.Kind() == ValueKind::Integer) {
    const int16_t position = selector.ToInt16();
    return position < lower_ || position > UpperBound() ? -1 : position;
  }
  return FindKey(TextOf(selector));
}

void AdvancedList::MarkDeleted(int16_t position) {
  AdvancedItem& item = At(position);
  item.Deleted = true;
  item.Dirty = true;
  auto& positions = byKey_[item.Key];
  positions.erase(std::remove(positions.begin(), positions.end(), position), positions.end());
}

// ---- clsAdvanced

clsAdvanced::clsAdvanced(IRegistryStore& store) : store_(store) { LoadValues(); }

clsAdvanced::~clsAdvanced() {
  try {
    SaveValues();
  } catch (...) {
    // A failed save is not retried and shows nothing.
  }
}

void clsAdvanced::Touch(Group group) {
  if (!loading_) dirty_[group] = true;
}

void clsAdvanced::UseLoginSecurity(bool value) {
  useLoginSecurity_ = value;
  Touch(kLogins);
}
void clsAdvanced::IndexControl(int16_t value) {
  indexControl_ = value;
  Touch(kTokens);
}
void clsAdvanced::UseFavorite(bool value) {
  useFavorite_ = value;
  Touch(kFavorites);
}
void clsAdvanced::AlertOutOfBounds(int16_t value) {
  alertOutOfBounds_ = value;
  Touch(kOperPrefs);
}
void clsAdvanced::AlertRollover(int16_t value) {
  alertRollover_ = value;
  Touch(kOperPrefs);
}
void clsAdvanced::AlertTamper(int16_t value) {
  alertTamper_ = value;
  Touch(kOperPrefs);
}

AdvancedList* clsAdvanced::MessageList(std::string_view type) {
  if (type == "Account") return &lists_[kListMessagesAccount];
  if (type == "SerialNbr") return &lists_[kListMessagesSerial];
  if (type == "TagNbr") return &lists_[kListMessagesTag];
  return nullptr;
}

AdvancedList* clsAdvanced::TokenList(std::string_view type) {
  if (type == "Address") return &lists_[kListTokensAddress];
  if (type == "Owner") return &lists_[kListTokensOwner];
  return nullptr;
}

AdvancedList* clsAdvanced::ChangeoutList(std::string_view type) {
  if (type == "RC") return &lists_[kListChangeoutsRC];
  if (type == "MT") return &lists_[kListChangeoutsMT];
  if (type == "MFG") return &lists_[kListChangeoutsMFG];
  if (type == "MS") return &lists_[kListChangeoutsMS];
  return nullptr;
}

int16_t clsAdvanced::AddTo(ListId list, std::string key, std::string detail, std::string value) {
  const int16_t position =
      lists_[list].Add(std::move(key), std::move(detail), std::move(value), !loading_);
  Touch(kListInfo[list].group);
  return position;
}

int16_t clsAdvanced::UpdateIn(AdvancedList& list, Group group, std::string_view key,
                              std::string detail, std::string value) {
  const int16_t position = list.FindKey(key);
  if (position < 1) return -1;
  AdvancedItem& item = list.At(position);
  item.Detail = std::move(detail);
  item.Value = std::move(value);
  item.Dirty = true;
  Touch(group);
  return position;
}

int16_t clsAdvanced::DeleteFrom(AdvancedList& list, Group group, std::string_view key) {
  const int16_t position = list.FindKey(key);
  if (position < 1) return -1;
  list.MarkDeleted(position);
  Touch(group);
  return position;
}

namespace {

// Copies a found record's fields out; a deleted one reports only an empty key.
int16_t Fetch(AdvancedList& list, const Value& selector, std::string& key, std::string* detail,
              std::string* value) {
  const int16_t position = list.Find(selector);
  if (position < 0) return position;
  AdvancedItem& item = list.At(position);
  if (item.Deleted) {
    key.clear();
    return position;
  }
  key = item.Key;
  if (detail != nullptr) *detail = item.Detail;
  if (value != nullptr) *value = item.Value;
  return position;
}

}  // namespace

int16_t clsAdvanced::GetLogin(const Value& selector, std::string& loginID, std::string& password,
                              std::string& rights) {
  return Fetch(lists_[kListLogins], selector, loginID, &rights, &password);
}
int16_t clsAdvanced::AddLogin(const std::string& loginID, const std::string& password,
                              const std::string& rights) {
  return AddTo(kListLogins, loginID, rights, password);
}
int16_t clsAdvanced::UpdateLogin(const std::string& loginID, const std::string& password,
                                 const std::string& rights) {
  return UpdateIn(lists_[kListLogins], kLogins, loginID, rights, password);
}
int16_t clsAdvanced::DeleteLogin(const std::string& loginID) {
  return DeleteFrom(lists_[kListLogins], kLogins, loginID);
}

int16_t clsAdvanced::GetMessage(std::string_view type, const Value& selector, std::string& route,
                                std::string& id, std::string& message) {
  AdvancedList* list = MessageList(type);
  if (list == nullptr) return 0;
  std::string key;
  const int16_t position = Fetch(*list, selector, key, nullptr, &message);
  if (position >= 0) std::tie(route, id) = SplitPair(key);
  return position;
}
int16_t clsAdvanced::AddMessage(std::string_view type, const std::string& route,
                                const std::string& id, const std::string& message) {
  AdvancedList* list = MessageList(type);
  if (list == nullptr) return 0;
  return AddTo(static_cast<ListId>(list - lists_.data()), route + "||" + id, std::string(), message);
}
int16_t clsAdvanced::UpdateMessage(std::string_view type, const std::string& route,
                                   const std::string& id, const std::string& message) {
  AdvancedList* list = MessageList(type);
  if (list == nullptr) return 0;
  return UpdateIn(*list, kMessages, route + "||" + id, std::string(), message);
}
int16_t clsAdvanced::DeleteMessage(std::string_view type, const std::string& route,
                                   const std::string& id) {
  AdvancedList* list = MessageList(type);
  if (list == nullptr) return 0;
  return DeleteFrom(*list, kMessages, route + "||" + id);
}

std::string clsAdvanced::LookupMessage(const std::string& billing, const std::string& route,
                                       const std::string& account, const std::string& serial,
                                       const std::string& tag) {
  std::string supervisor;
  std::string label;
  const std::array<std::pair<const char*, const std::string*>, 3> kinds = {
      {{"Account", &account}, {"SerialNbr", &serial}, {"TagNbr", &tag}}};
  std::string key;
  for (const auto& [type, argument] : kinds) {
    AdvancedList& list = *MessageList(type);
    // A list without records (positions from 1) has no message to find.
    if (list.LowerBound() == 0 || argument->find_first_not_of(' ') == std::string::npos) continue;
    // The route's own message first, then one for any route.
    key.assign(route).append("||").append(*argument);
    int16_t position = list.FindKey(key);
    if (position < 0) {
      key.assign("ANY||").append(*argument);
      position = list.FindKey(key);
    }
    if (position < 0) continue;
    const AdvancedItem& item = list.At(position);
    const std::string& message = item.Deleted ? std::string() : item.Value;
    if (!supervisor.empty() && !label.empty()) {
      supervisor = label + ": " + supervisor;
      label.clear();
    }
    if (!supervisor.empty()) {
      supervisor += std::string("; ") + type + ": " + message;
    } else {
      supervisor = message;
      label = type;
    }
  }
  // Both present is tested with a bitwise AND of the two lengths, so lengths
  // with no bit in common (4 and 8) drop the supervisor text. Kept on purpose.
  if ((billing.size() & supervisor.size()) != 0) {
    return "Billing: " + billing + "\n" + "Supervisor: " + supervisor;
  }
  if (!billing.empty()) return "Billing: " + billing;
  if (!supervisor.empty()) return "Supervisor: " + supervisor;
  return {};
}

int16_t clsAdvanced::GetToken(std::string_view type, const Value& selector, std::string& token) {
  AdvancedList* list = TokenList(type);
  if (list == nullptr) return 0;
  return Fetch(*list, selector, token, nullptr, nullptr);
}
int16_t clsAdvanced::TokenPosition(std::string_view type, std::string_view token) {
  AdvancedList* list = TokenList(type);
  if (list == nullptr) return 0;
  return list->FindKey(token);
}

int16_t clsAdvanced::AddToken(std::string_view type, const std::string& token) {
  AdvancedList* list = TokenList(type);
  if (list == nullptr) return 0;
  return AddTo(static_cast<ListId>(list - lists_.data()), token, std::string(), std::string());
}
int16_t clsAdvanced::DeleteToken(std::string_view type, const std::string& token) {
  AdvancedList* list = TokenList(type);
  if (list == nullptr) return 0;
  return DeleteFrom(*list, kTokens, token);
}

int16_t clsAdvanced::GetChangeout(std::string_view type, const Value& selector, std::string& code,
                                  std::string& description) {
  AdvancedList* list = ChangeoutList(type);
  if (list == nullptr) return 0;
  return Fetch(*list, selector, code, nullptr, &description);
}
int16_t clsAdvanced::AddChangeout(std::string_view type, const std::string& code,
                                  const std::string& description) {
  AdvancedList* list = ChangeoutList(type);
  if (list == nullptr) return 0;
  return AddTo(static_cast<ListId>(list - lists_.data()), code, std::string(), description);
}
int16_t clsAdvanced::UpdateChangeout(std::string_view type, const std::string& code,
                                     const std::string& description) {
  AdvancedList* list = ChangeoutList(type);
  if (list == nullptr) return 0;
  return UpdateIn(*list, kChangeouts, code, std::string(), description);
}
int16_t clsAdvanced::DeleteChangeout(std::string_view type, const std::string& code) {
  AdvancedList* list = ChangeoutList(type);
  if (list == nullptr) return 0;
  return DeleteFrom(*list, kChangeouts, code);
}

int16_t clsAdvanced::GetFavorite(const Value& selector, std::string& unitID, std::string& path) {
  return Fetch(lists_[kListFavorites], selector, unitID, nullptr, &path);
}
int16_t clsAdvanced::AddFavorite(const std::string& unitID, const std::string& path) {
  return AddTo(kListFavorites, unitID, std::string(), path);
}
int16_t clsAdvanced::UpdateFavorite(const std::string& unitID, const std::string& path) {
  // Unlike every other update, a unit that isn't there is added.
  const int16_t position = UpdateIn(lists_[kListFavorites], kFavorites, unitID, std::string(), path);
  return position < 0 ? AddFavorite(unitID, path) : position;
}
int16_t clsAdvanced::DeleteFavorite(const std::string& unitID) {
  return DeleteFrom(lists_[kListFavorites], kFavorites, unitID);
}

int16_t clsAdvanced::GetSkip(const Value& selector, std::string& code, std::string& reason) {
  return Fetch(lists_[kListSkips], selector, code, nullptr, &reason);
}
int16_t clsAdvanced::AddSkip(const std::string& code, const std::string& reason) {
  return AddTo(kListSkips, code, std::string(), reason);
}
int16_t clsAdvanced::UpdateSkip(const std::string& code, const std::string& reason) {
  return UpdateIn(lists_[kListSkips], kSkips, code, std::string(), reason);
}
int16_t clsAdvanced::DeleteSkip(const std::string& code) {
  return DeleteFrom(lists_[kListSkips], kSkips, code);
}

// ---- loading and saving

namespace {

std::string ReadSetting(clsRegistry& registry, std::string_view key, std::string_view name,
                        std::string_view defaultValue) {
  const std::string text = TextOf(registry.GetValue(RootReadPath(key, name)));
  return text.empty() ? std::string(defaultValue) : text;
}

int32_t NumberSetting(clsRegistry& registry, std::string_view key, std::string_view name,
                      std::string_view defaultValue) {
  try {
    return ToInt32(NumericPrefix(ReadSetting(registry, key, name, defaultValue)));
  } catch (const Failure&) {
    return ToInt32(NumericPrefix(defaultValue));
  }
}

}  // namespace

void clsAdvanced::LoadList(ListId list) {
  clsRegistry registry(store_);
  const ListInfo& info = kListInfo[list];
  try {
    for (auto& [name, data] : registry.GetValuesWithData(RootKeyPath(info.key))) {
      const std::string text = TextOf(data);
      switch (info.form) {
        case Form::Login: {
          auto [password, rights] = SplitPair(text);
          AddTo(list, name, rights, password);
          break;
        }
        case Form::Message: {
          auto [route, id] = SplitPair(name);
          AddTo(list, route + "||" + id, std::string(), text);
          break;
        }
        case Form::Token: AddTo(list, name, std::string(), std::string()); break;
        case Form::Plain: AddTo(list, name, std::string(), text); break;
      }
    }
  } catch (const Failure&) {
    // A list past 32,767 records keeps what fitted.
  }
}

void clsAdvanced::LoadValues() {
  ReadingTogether together(store_);
  clsRegistry registry(store_);
  lists_ = {};
  dirty_ = {};
  loading_ = true;
  useLoginSecurity_ = ReadSetting(registry, "LoginSetup", "UseLogin", "N") == "Y";
  LoadList(kListLogins);
  LoadList(kListMessagesAccount);
  LoadList(kListMessagesSerial);
  LoadList(kListMessagesTag);
  indexControl_ = static_cast<int16_t>(NumberSetting(registry, "Token", "IndexControl", "1"));
  for (const ListId list : {kListTokensAddress, kListTokensOwner}) {
    LoadList(list);
    if (lists_[list].LowerBound() != 0) continue;
    // A type with no token at all gets the built-in ones back, dirty, so
    // that the next save writes them.
    loading_ = false;
    for (const char* token : list == kListTokensAddress ? kAddressTokens : kOwnerTokens) {
      AddTo(list, token, std::string(), std::string());
    }
    loading_ = true;
  }
  for (const ListId list : {kListChangeoutsRC, kListChangeoutsMT, kListChangeoutsMFG, kListChangeoutsMS}) {
    LoadList(list);
  }
  useFavorite_ = ReadSetting(registry, "FavoriteSetup", "UseFavorite", "N") == "Y";
  LoadList(kListFavorites);
  LoadList(kListSkips);
  alertOutOfBounds_ = NumberSetting(registry, "OperPrefs", "AlertOutOfBounds", "0");
  alertRollover_ = NumberSetting(registry, "OperPrefs", "AlertRollover", "0");
  alertTamper_ = NumberSetting(registry, "OperPrefs", "AlertTamper", "0");
  loading_ = false;
}

void clsAdvanced::SaveGroup(Group group) {
  clsRegistry registry(store_);
  switch (group) {
    case kLogins:
      registry.SaveValue(useLoginSecurity_ ? "Y" : "N", RootValuePath("LoginSetup", "UseLogin"));
      break;
    case kTokens:
      registry.SaveValue(std::to_string(indexControl_), RootValuePath("Token", "IndexControl"));
      break;
    case kFavorites:
      registry.SaveValue(useFavorite_ ? "Y" : "N", RootValuePath("FavoriteSetup", "UseFavorite"));
      break;
    case kOperPrefs:
      registry.SaveValue(std::to_string(alertOutOfBounds_), RootValuePath("OperPrefs", "AlertOutOfBounds"));
      registry.SaveValue(std::to_string(alertRollover_), RootValuePath("OperPrefs", "AlertRollover"));
      registry.SaveValue(std::to_string(alertTamper_), RootValuePath("OperPrefs", "AlertTamper"));
      break;
    default: break;
  }
  for (size_t list = 0; list < kListInfo.size(); ++list) {
    const ListInfo& info = kListInfo[list];
    if (info.group != group) continue;
    for (AdvancedItem& item : lists_[list].Items()) {
      if (!item.Dirty) continue;
      if (item.Deleted) {
        registry.DeleteValue(RootValuePath(info.key, item.Key));
      } else {
        std::string data;
        switch (info.form) {
          case Form::Login: data = item.Value + "||" + item.Detail; break;
          case Form::Token: break;
          case Form::Message:
          case Form::Plain: data = item.Value; break;
        }
        registry.SaveValue(data, RootValuePath(info.key, item.Key));
      }
      // Cleared whether or not the write went through: it is not retried.
      item.Dirty = false;
    }
  }
  dirty_[group] = false;
}

void clsAdvanced::SaveValues() {
  for (int group = 0; group < kGroups; ++group) {
    if (dirty_[static_cast<size_t>(group)]) SaveGroup(static_cast<Group>(group));
  }
}

}  // namespace hifx
