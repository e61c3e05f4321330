// The indexes and code lists that a route HIF carries behind its meters.
#include <array>
#include <utility>

#include "base/CaseBlind.h"
#include "base/Failure.h"
#include "base/Text.h"
#include "exchange/ExchangeText.h"
#include "exchange/clsExchange.h"

namespace hifx {
namespace {

constexpr int kIndexTypes = 5;

}  // namespace

bool clsExchange::IsIndexToken(int32_t type, std::string_view word) {
  if (type == 0) return Advanced().TokenPosition("Owner", word) >= 0;
  if (type == 1) return Advanced().TokenPosition("Address", word) >= 0;
  return false;
}

template <typename Take>
void clsExchange::ForEachIndexWord(std::string_view text, int32_t type, Take take) {
  // Upper case, with everything but letters, digits and spaces a space.
  std::string& clean = indexText_;
  clean.assign(text);
  for (char& c : clean) {
    c = FoldCase(c);
    if (!((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ')) c = ' ';
  }
  size_t at = 0;
  while (at < clean.size()) {
    while (at < clean.size() && clean[at] == ' ') ++at;
    size_t end = at;
    while (end < clean.size() && clean[end] != ' ') ++end;
    const std::string_view word = std::string_view(clean).substr(at, end - at);
    if (word.size() > 1) {
      // 1ST, 2ND and 3RD are kept; 4TH and plain numbers are not, on purpose.
      const std::string_view ending = word.substr(word.size() - 2);
      const bool ordinal = ending == "ST" || ending == "ND" || ending == "RD";
      if ((word[0] >= 'A' || ordinal) && !IsIndexToken(type, word)) take(word);
    }
    at = end;
  }
}

std::vector<std::string> clsExchange::IndexWords(std::string_view text, int32_t type) {
  std::vector<std::string> words;
  ForEachIndexWord(text, type, [&](std::string_view word) { words.emplace_back(word); });
  return words;
}

void clsExchange::WriteIndexedMeter() {
  clsHIF& hif = *ActiveHIF;
  hif.WriteData();
  ++MetersWritten;
  // The index takes the fields as the record holds them. What it gathers is
  // only ever written as index records, so with none to write it gathers
  // nothing.
  if (CreateIndexes) IndexWrittenMeter(hif.Item(MeterField::RouteNbr).ToInt32());
  MeterRecordNumber = ToInt16(MeterRecordNumber + 1.0);
}

void clsExchange::IndexWrittenMeter(int32_t route) {
  using enum MeterField;
  constexpr std::array<MeterField, 5> kIndexed = {MeterTagNbr, MeterSerialNbr, BillingName, ServiceAddress,
                                                  ServiceUniqueID};
  std::array<std::string_view, kIndexed.size()> texts;
  for (size_t i = 0; i < kIndexed.size(); ++i) {
    ActiveHIF->ReadItem(kIndexed[i], indexed_[i].value);
    texts[i] = TextOf(indexed_[i].value, indexed_[i].text);
  }
  UpdateIndexes(route, MeterRecordNumber, texts[0], texts[1], texts[2], texts[3], texts[4]);
}

void clsExchange::UpdateIndexes(int32_t route, int16_t number, std::string_view tag, std::string_view serial,
                                std::string_view name, std::string_view address, std::string_view account) {
  if (indexes_.empty() && route > 0) indexes_.resize(kIndexTypes);
  if (route != indexRoute_ && indexRoute_ > 0 && CreateIndexes) {
    for (int type = 0; type < static_cast<int>(indexes_.size()); ++type) {
      clsIndex& index = indexes_[static_cast<size_t>(type)];
      index.Route = static_cast<int16_t>(indexRoute_);
      index.IndexType = type;
      index.WriteRecord(*ActiveHIF);
    }
  }
  for (int type = 0; type < static_cast<int>(indexes_.size()); ++type) {
    clsIndex& index = indexes_[static_cast<size_t>(type)];
    const auto insert = [&](std::string_view key) { index.Insert(key, number); };
    switch (type) {
      case 0:
        ForEachIndexWord(name, 0, insert);
        break;
      case 1:
        ForEachIndexWord(address, 1, insert);
        break;
      case 2: {
        const std::string_view key = Trim(tag);
        if (!key.empty() && key != "0") index.InsertUpper(key, number);
        break;
      }
      default: {
        const std::string_view key = Trim(type == 3 ? serial : account);
        if (!key.empty()) index.InsertUpper(key, number);
        break;
      }
    }
  }
  indexRoute_ = route;
  if (route == 0) indexes_.clear();
}

namespace {

// Walks a list from position 1 until its reader gives a negative position,
// leaving out deleted entries (an empty first text).
template <typename Reader>
int16_t Gather(Reader read, std::vector<std::string>& a, std::vector<std::string>& b,
               std::vector<std::string>& c) {
  for (int16_t position = 1;; ++position) {
    std::string x, y, z;
    if (read(position, x, y, z) < 0) break;
    if (x.empty()) continue;
    a.push_back(std::move(x));
    b.push_back(std::move(y));
    c.push_back(std::move(z));
  }
  return static_cast<int16_t>(a.size());
}

}  // namespace

void clsExchange::WriteLoginRecord() {
  clsAdvanced& advanced = Advanced();
  if (!advanced.UseLoginSecurity()) return;
  std::vector<std::string> ids, passwords, rights;
  const int16_t count = Gather(
      [&](int16_t p, std::string& x, std::string& y, std::string& z) {
        return advanced.GetLogin(Value::Integer(p), x, y, z);
      },
      ids, passwords, rights);
  if (count > 0) ActiveHIF->AddCodeRecord(kRecLogins, 0, 1, count, ids, passwords, rights);
}

void clsExchange::WriteSkipRecord() {
  clsAdvanced& advanced = Advanced();
  std::vector<std::string> codes, reasons, empty;
  const int16_t count = Gather(
      [&](int16_t p, std::string& x, std::string& y, std::string& z) {
        z.clear();
        return advanced.GetSkip(Value::Integer(p), x, y);
      },
      codes, reasons, empty);
  if (count > 0) ActiveHIF->AddCodeRecord(kRecCodes, 0, 0, count, codes, reasons, empty);
}

void clsExchange::WriteChangeoutRecords() {
  clsAdvanced& advanced = Advanced();
  const std::array<const char*, 4> types = {"RC", "MT", "MFG", "MS"};
  for (size_t group = 0; group < types.size(); ++group) {
    std::vector<std::string> codes, descriptions, empty;
    const int16_t count = Gather(
        [&](int16_t p, std::string& x, std::string& y, std::string& z) {
          z.clear();
          return advanced.GetChangeout(types[group], Value::Integer(p), x, y);
        },
        codes, descriptions, empty);
    if (count > 0) {
      ActiveHIF->AddCodeRecord(kRecCodes, static_cast<int16_t>(group + 1), 0, count, codes,
                               descriptions, empty);
    }
  }
}

void clsExchange::WriteAlertRecord() {
  clsAdvanced& advanced = Advanced();
  ActiveHIF->AddCodeRecord(kRecAlerts, 0, 1, 3, {"RANGE", "ROLLOVER", "TAMPER"},
                           {std::to_string(advanced.AlertOutOfBounds()),
                            std::to_string(advanced.AlertRollover()),
                            std::to_string(advanced.AlertTamper())},
                           {"", "", ""});
}

void clsExchange::WriteCodeRecords() {
  WriteLoginRecord();
  WriteSkipRecord();
  WriteChangeoutRecords();
  WriteAlertRecord();
}

}  // namespace hifx
