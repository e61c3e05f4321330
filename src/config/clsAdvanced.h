// The site's lists that travel to the handheld or steer a conversion: logins,
// messages for particular meters, words kept out of the indexes, changeout
// and skip codes, favourite reading files, and the alert preferences. Loaded
// when made, saved when destroyed.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/CaseBlind.h"
#include "base/Value.h"
#include "config/IRegistryStore.h"

namespace hifx {

struct AdvancedItem {
  int16_t Index = 0;
  std::string Key;
  std::string Detail;  // the rights of a login; unused elsewhere
  std::string Value;
  bool Deleted = false;
  bool Dirty = false;
};

// One list: records from position 1, a deleted record staying in its place
// until the next load. Before the first record the list holds one empty
// element at position 0.
class AdvancedList {
 public:
  AdvancedList() : items_(1) {}
  int16_t Add(std::string key, std::string detail, std::string value, bool dirty);
  // The position of the record the selector names: a 16-bit integer is a
  // position, anything else a key, matched with no regard to case against
  // records not deleted, the first one winning. -1 when there is none.
  int16_t Find(const Value& selector) const;
  int16_t FindKey(std::string_view key) const;
  AdvancedItem& At(int16_t position) { return items_[static_cast<size_t>(position - lower_)]; }
  void MarkDeleted(int16_t position);
  int16_t LowerBound() const { return lower_; }
  int16_t UpperBound() const { return static_cast<int16_t>(static_cast<size_t>(lower_) + items_.size() - 1); }
  std::vector<AdvancedItem>& Items() { return items_; }

 private:
  std::vector<AdvancedItem> items_;
  int16_t lower_ = 0;
  // Live positions of each upper-cased key, ascending, so that a lookup by key
  // needs no scan and still finds the first match.
  std::unordered_map<std::string, std::vector<int16_t>, CaseBlindHash, CaseBlindEqual> byKey_;
  // The length and last letter of every key ever added, a bit each, so that
  // most keys the list lacks are turned away without hashing them: a message
  // is looked up twice for each kind on every meter.
  static uint64_t ShapeOf(std::string_view key);
  uint64_t keyShapes_ = 0;
};

class clsAdvanced {
 public:
  explicit clsAdvanced(IRegistryStore& store);
  ~clsAdvanced();
  clsAdvanced(const clsAdvanced&) = delete;
  clsAdvanced& operator=(const clsAdvanced&) = delete;

  void LoadValues();
  void SaveValues();

  bool UseLoginSecurity() const { return useLoginSecurity_; }
  void UseLoginSecurity(bool value);
  int16_t GetLogin(const Value& selector, std::string& loginID, std::string& password,
                   std::string& rights);
  int16_t AddLogin(const std::string& loginID, const std::string& password, const std::string& rights);
  int16_t UpdateLogin(const std::string& loginID, const std::string& password,
                      const std::string& rights);
  int16_t DeleteLogin(const std::string& loginID);

  std::string LookupMessage(const std::string& billing, const std::string& route,
                            const std::string& account, const std::string& serial,
                            const std::string& tag);
  int16_t GetMessage(std::string_view type, const Value& selector, std::string& route,
                     std::string& id, std::string& message);
  int16_t AddMessage(std::string_view type, const std::string& route, const std::string& id,
                     const std::string& message);
  int16_t UpdateMessage(std::string_view type, const std::string& route, const std::string& id,
                        const std::string& message);
  int16_t DeleteMessage(std::string_view type, const std::string& route, const std::string& id);

  // Does nothing: kept for the callers that still name it.
  Value GetIndex() const { return Value(); }
  int16_t IndexControl() const { return indexControl_; }
  void IndexControl(int16_t value);
  int16_t GetToken(std::string_view type, const Value& selector, std::string& token);
  // The position of a token of that type, -1 when there is none: GetToken's
  // answer by key, for the index words that ask it for every word.
  int16_t TokenPosition(std::string_view type, std::string_view token);
  int16_t AddToken(std::string_view type, const std::string& token);
  int16_t DeleteToken(std::string_view type, const std::string& token);

  int16_t GetChangeout(std::string_view type, const Value& selector, std::string& code,
                       std::string& description);
  int16_t AddChangeout(std::string_view type, const std::string& code, const std::string& description);
  int16_t UpdateChangeout(std::string_view type, const std::string& code,
                          const std::string& description);
  int16_t DeleteChangeout(std::string_view type, const std::string& code);

  bool UseFavorite() const { return useFavorite_; }
  void UseFavorite(bool value);
  int16_t GetFavorite(const Value& selector, std::string& unitID, std::string& path);
  int16_t AddFavorite(const std::string& unitID, const std::string& path);
  int16_t UpdateFavorite(const std::string& unitID, const std::string& path);
  int16_t DeleteFavorite(const std::string& unitID);

  int16_t GetSkip(const Value& selector, std::string& code, std::string& reason);
  int16_t AddSkip(const std::string& code, const std::string& reason);
  int16_t UpdateSkip(const std::string& code, const std::string& reason);
  int16_t DeleteSkip(const std::string& code);

  int16_t AlertOutOfBounds() const { return static_cast<int16_t>(alertOutOfBounds_); }
  void AlertOutOfBounds(int16_t value);
  int16_t AlertRollover() const { return static_cast<int16_t>(alertRollover_); }
  void AlertRollover(int16_t value);
  int16_t AlertTamper() const { return static_cast<int16_t>(alertTamper_); }
  void AlertTamper(int16_t value);

  // The groups that are saved together, in the order of loading.
  enum Group { kLogins, kMessages, kTokens, kChangeouts, kFavorites, kSkips, kOperPrefs, kGroups };
  bool IsDirty(Group group) const { return dirty_[group]; }

 private:
  enum ListId {
    kListLogins,
    kListMessagesAccount,
    kListMessagesSerial,
    kListMessagesTag,
    kListTokensAddress,
    kListTokensOwner,
    kListChangeoutsRC,
    kListChangeoutsMT,
    kListChangeoutsMFG,
    kListChangeoutsMS,
    kListFavorites,
    kListSkips,
    kLists
  };

  AdvancedList* MessageList(std::string_view type);
  AdvancedList* TokenList(std::string_view type);
  AdvancedList* ChangeoutList(std::string_view type);
  void Touch(Group group);
  int16_t AddTo(ListId list, std::string key, std::string detail, std::string value);
  int16_t UpdateIn(AdvancedList& list, Group group, std::string_view key, std::string detail,
                   std::string value);
  int16_t DeleteFrom(AdvancedList& list, Group group, std::string_view key);
  void LoadList(ListId list);
  void SaveGroup(Group group);

  IRegistryStore& store_;
  std::array<AdvancedList, kLists> lists_;
  std::array<bool, kGroups> dirty_{};
  bool loading_ = false;
  bool useLoginSecurity_ = false;
  bool useFavorite_ = false;
  int16_t indexControl_ = 1;
  int32_t alertOutOfBounds_ = 0;
  int32_t alertRollover_ = 0;
  int32_t alertTamper_ = 0;
};

}  // namespace hifx
