// The twenty exchange settings as one table: each with its property, its
// kind, its default, and where the registry keeps it (which is also how a
// distribution file carries it, in the dump of the registry tree). Loading,
// saving and the command line's settings all read this table.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "exchange/clsExchange.h"

namespace hifx {

struct ExchangeSetting {
  // Texts are stored as they are; flags as "Y" or "N", only exactly "Y"
  // reading as true; the two integer flags as decimal text, read by their
  // leading number.
  using Member = std::variant<std::string clsExchange::*, bool clsExchange::*, int16_t clsExchange::*>;

  std::string_view name;          // the property, as the command line names it too
  Member member;
  std::string_view defaultValue;  // what a missing or empty value reads as
  std::string_view key;           // the key under the registry root
  std::string_view valueName;
  int saveRank;                   // place in the order SaveSettings writes

  bool IsText() const { return member.index() == 0; }
  bool IsFlag() const { return member.index() == 1; }
  bool IsInteger() const { return member.index() == 2; }
};

// The settings in the order LoadSettings reads them.
const std::vector<ExchangeSetting>& ExchangeSettings();
// The setting of a property name in any case; nullptr for none.
const ExchangeSetting* FindExchangeSetting(std::string_view name);

// The setting's value as the registry stores it.
std::string StoredForm(const clsExchange& exchange, const ExchangeSetting& setting);
// Sets the property from the text the registry holds.
void Decode(clsExchange& exchange, const ExchangeSetting& setting, const std::string& stored);

}  // namespace hifx
