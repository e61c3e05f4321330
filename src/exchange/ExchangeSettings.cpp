// The exchange settings and their place in the registry.
#include "base/Failure.h"
#include "base/Numbers.h"
#include "config/RegistryRoot.h"
#include "config/clsRegistry.h"
#include "exchange/clsExchange.h"

namespace hifx {
namespace {

// Only exactly "Y" is true.
bool DecodeFlag(const Value& v) { return v.IsText() && v.Text() == "Y"; }
std::string EncodeFlag(bool flag) { return flag ? "Y" : "N"; }

int16_t DecodeInteger(const Value& v) {
  try {
    return ToInt16(NumericPrefix(v.IsText() ? v.Text() : v.ToText()));
  } catch (const Failure&) {
    return 0;
  }
}


}  // namespace

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
  RouteSource = TextOf(GetParm("Route", "Source", ""));
  RouteDestination = TextOf(GetParm("Route", "Destination", "RouteHIF.pdb"));
  RouteMap = TextOf(GetParm("Route", "Map", ""));
  RouteHIFType = TextOf(GetParm("Route", "HIFType", "PDB"));
  ReReadSource = TextOf(GetParm("ReRead", "Source", ""));
  ReReadDestination = TextOf(GetParm("ReRead", "Destination", "RouteHIF.pdb"));
  ReReadMap = TextOf(GetParm("ReRead", "Map", ""));
  ReReadHIFType = TextOf(GetParm("ReRead", "HIFType", "PDB"));
  ReadingSource = TextOf(GetParm("Reading", "Source", "ReadingHIF.pdb"));
  ReadingDestination = TextOf(GetParm("Reading", "Destination", ""));
  ReadingMap = TextOf(GetParm("Reading", "Map", ""));
  AutoReRead = DecodeFlag(GetParm("Reading", "AutoReRead", ""));
  OrphanDestination = TextOf(GetParm("Orphan", "Destination", ""));
  OrphanMap = TextOf(GetParm("Orphan", "Map", ""));
  OrphanConvert = DecodeInteger(GetParm("Orphan", "Convert", ""));
  OrphanReplace = DecodeInteger(GetParm("Orphan", "Replace", ""));
  AutoInstall = DecodeFlag(GetParm("PRCInstall", "AutoInstall", ""));
  AutoInstallUnit = TextOf(GetParm("PRCInstall", "Unit", ""));
  AutoInstallPrompt = DecodeFlag(GetParm("PRCInstall", "Prompt", ""));
  AutoInstallLeave = DecodeFlag(GetParm("PRCInstall", "Leave", ""));
}

void clsExchange::SaveSettings() {
  // The order differs from the load's in places; a new tree is written in
  // this order.
  SaveParm("Route", "Source", RouteSource);
  SaveParm("Route", "Destination", RouteDestination);
  SaveParm("Route", "HIFType", RouteHIFType);
  SaveParm("Route", "Map", RouteMap);
  SaveParm("ReRead", "Source", ReReadSource);
  SaveParm("ReRead", "Destination", ReReadDestination);
  SaveParm("ReRead", "HIFType", ReReadHIFType);
  SaveParm("ReRead", "Map", ReReadMap);
  SaveParm("Reading", "Source", ReadingSource);
  SaveParm("Reading", "Destination", ReadingDestination);
  SaveParm("Reading", "Map", ReadingMap);
  SaveParm("Reading", "AutoReRead", EncodeFlag(AutoReRead));
  SaveParm("Orphan", "Destination", OrphanDestination);
  SaveParm("Orphan", "Map", OrphanMap);
  SaveParm("Orphan", "Convert", std::to_string(OrphanConvert));
  SaveParm("Orphan", "Replace", std::to_string(OrphanReplace));
  SaveParm("PRCInstall", "AutoInstall", EncodeFlag(AutoInstall));
  SaveParm("PRCInstall", "Prompt", EncodeFlag(AutoInstallPrompt));
  SaveParm("PRCInstall", "Leave", EncodeFlag(AutoInstallLeave));
  SaveParm("PRCInstall", "Unit", AutoInstallUnit);
}

}  // namespace hifx
