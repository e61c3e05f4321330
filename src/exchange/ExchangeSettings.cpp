// The exchange settings and their place in the registry.
#include "exchange/ExchangeSettings.h"

#include <algorithm>

#include "base/CaseBlind.h"
#include "base/Failure.h"
#include "base/Numbers.h"
#include "config/RegistryRoot.h"
#include "config/clsRegistry.h"
#include "exchange/clsExchange.h"

namespace hifx {
namespace {

int16_t DecodeInteger(const std::string& text) {
  try {
    return ToInt16(NumericPrefix(text));
  } catch (const Failure&) {
    return 0;
  }
}

// Route and PRCInstall are written in an order of their own: a new tree is
// made in it.
const std::vector<ExchangeSetting> kSettings = {
    {"RouteSource", &clsExchange::RouteSource, "", "Route", "Source", 0},
    {"RouteDestination", &clsExchange::RouteDestination, "RouteHIF.pdb", "Route", "Destination", 1},
    {"RouteMap", &clsExchange::RouteMap, "", "Route", "Map", 3},
    {"RouteHIFType", &clsExchange::RouteHIFType, "PDB", "Route", "HIFType", 2},
    {"ReReadSource", &clsExchange::ReReadSource, "", "ReRead", "Source", 4},
    {"ReReadDestination", &clsExchange::ReReadDestination, "RouteHIF.pdb", "ReRead", "Destination", 5},
    {"ReReadMap", &clsExchange::ReReadMap, "", "ReRead", "Map", 7},
    {"ReReadHIFType", &clsExchange::ReReadHIFType, "PDB", "ReRead", "HIFType", 6},
    {"ReadingSource", &clsExchange::ReadingSource, "ReadingHIF.pdb", "Reading", "Source", 8},
    {"ReadingDestination", &clsExchange::ReadingDestination, "", "Reading", "Destination", 9},
    {"ReadingMap", &clsExchange::ReadingMap, "", "Reading", "Map", 10},
    {"AutoReRead", &clsExchange::AutoReRead, "", "Reading", "AutoReRead", 11},
    {"OrphanDestination", &clsExchange::OrphanDestination, "", "Orphan", "Destination", 12},
    {"OrphanMap", &clsExchange::OrphanMap, "", "Orphan", "Map", 13},
    {"OrphanConvert", &clsExchange::OrphanConvert, "", "Orphan", "Convert", 14},
    {"OrphanReplace", &clsExchange::OrphanReplace, "", "Orphan", "Replace", 15},
    {"AutoInstall", &clsExchange::AutoInstall, "", "PRCInstall", "AutoInstall", 16},
    {"AutoInstallUnit", &clsExchange::AutoInstallUnit, "", "PRCInstall", "Unit", 19},
    {"AutoInstallPrompt", &clsExchange::AutoInstallPrompt, "", "PRCInstall", "Prompt", 17},
    {"AutoInstallLeave", &clsExchange::AutoInstallLeave, "", "PRCInstall", "Leave", 18},
};

// The settings in the order SaveSettings writes them.
std::vector<const ExchangeSetting*> InSaveOrder() {
  std::vector<const ExchangeSetting*> order;
  for (const ExchangeSetting& s : kSettings) order.push_back(&s);
  std::sort(order.begin(), order.end(), [](auto* a, auto* b) { return a->saveRank < b->saveRank; });
  return order;
}

}  // namespace

const std::vector<ExchangeSetting>& ExchangeSettings() { return kSettings; }

const ExchangeSetting* FindExchangeSetting(std::string_view name) {
  for (const ExchangeSetting& s : kSettings) {
    if (EqualsCaseBlind(s.name, name)) return &s;
  }
  return nullptr;
}

std::string StoredForm(const clsExchange& exchange, const ExchangeSetting& setting) {
  if (setting.IsText()) return exchange.*std::get<0>(setting.member);
  if (setting.IsFlag()) return exchange.*std::get<1>(setting.member) ? "Y" : "N";
  return std::to_string(exchange.*std::get<2>(setting.member));
}

void Decode(clsExchange& exchange, const ExchangeSetting& setting, const std::string& stored) {
  if (setting.IsText()) {
    exchange.*std::get<0>(setting.member) = stored;
  } else if (setting.IsFlag()) {
    // Only exactly "Y" is true.
    exchange.*std::get<1>(setting.member) = stored == "Y";
  } else {
    exchange.*std::get<2>(setting.member) = DecodeInteger(stored);
  }
}

std::string DefaultFileExtension(int16_t type) {
  switch (type) {
    case kUseRoute:
    case kUseReRead:
    case kUseReading:
    case kUseOrphan: return ".txt";
    default: return {};
  }
}

std::string TypeDescr(int16_t type) {
  switch (type) {
    case kUseRoute: return "Route";
    case kUseReRead: return "ReRead";
    case kUseReading: return "Reading";
    case kUseOrphan: return "Orphan";
    default: return {};
  }
}

clsExchange::clsExchange(ExchangeEnvironment environment) : env_(std::move(environment)) {}

clsExchange::~clsExchange() = default;

clsAdvanced& clsExchange::Advanced() {
  if (!advanced_) advanced_ = std::make_unique<clsAdvanced>(env_.store);
  return *advanced_;
}

Value clsExchange::GetParm(std::string_view section, std::string_view valueName,
                           const Value& defaultValue) {
  const Value value = clsRegistry(env_.store).GetValue(RootReadPath(section, valueName));
  // An existing empty value counts as missing.
  if (value.IsEmpty() || (value.IsText() && value.Text().empty())) return defaultValue;
  return value;
}

bool clsExchange::SaveParm(std::string_view section, std::string_view valueName,
                           std::string_view value) {
  return clsRegistry(env_.store).SaveValue(value, RootValuePath(section, valueName));
}

void clsExchange::LoadSettings() {
  ReadingTogether together(env_.store);
  for (const ExchangeSetting& s : kSettings) {
    Decode(*this, s, TextOf(GetParm(s.key, s.valueName, Value(std::string(s.defaultValue)))));
  }
}

void clsExchange::SaveSettings() {
  static const std::vector<const ExchangeSetting*> order = InSaveOrder();
  for (const ExchangeSetting* s : order) SaveParm(s->key, s->valueName, StoredForm(*this, *s));
}

}  // namespace hifx
