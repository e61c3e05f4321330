#include "maps/MapCatalogues.h"

#include <algorithm>
#include <utility>

#include "maps/clsExchMap.h"

namespace hifx {
namespace {

constexpr CatalogueEntry kRouteFields[] = {
    {kTypeText, "RouteNbr", true, 0, 0, ""},
    {kTypeNumber, "Sequence", true, 1, 0, ""},
    {kTypeNumber, "MeterTagNbr", true, 0, 16777215, ""},
    {kTypeText, "MeterType", true, 0, 0, ""},
    {kTypeInteger, "Digits", false, 0, 0, ""},
    {kTypeInteger, "Decimals", false, 0, 0, ""},
    {kTypeNumber, "PrvReading", false, 0, 0, ""},
    {kTypeNumber, "MaxReading", false, 0, 0, ""},
    {kTypeNumber, "MinReading", false, 0, 0, ""},
    {kTypeInteger, "ReadType", false, 0, 0, ""},
    {kTypeDate, "LstReadingDate", false, 0, 0, ""},
    {kTypeInteger, "UtilityCode", true, 1, 255, ""},
    {kTypeNumber, "Lat", false, 0, 0, ""},
    {kTypeNumber, "Lng", false, 0, 0, ""},
    {kTypeNumber, "ScaleFactor", false, 0, 0, "Pulse Scaling (434)"},
    {kTypeNumber, "InitReading", false, 0, 0, "Initial Reading(434)"},
    {kTypeNumber, "InitPulseCount", false, 0, 0, "Initial Pulse Count(434)"},
    {kTypeLong, "InitTamperCount", false, 0, 0, "Initial Tamper Count(434)"},
    {kTypeText, "Message", false, 0, 0, ""},
    {kTypeText, "ServiceAddress", true, 0, 0, ""},
    {kTypeText, "BillingName", false, 0, 0, ""},
    {kTypeText, "ServiceUniqueID", false, 0, 0, ""},
    {kTypeText, "MeterSerialNbr", false, 0, 0, ""},
    {kTypeText, "User1", false, 0, 0, ""},
    {kTypeText, "User2", false, 0, 0, ""},
    {kTypeText, "User3", false, 0, 0, ""},
    {kTypeText, "User4", false, 0, 0, ""},
    {kTypeText, "User5", false, 0, 0, ""},
};

constexpr CatalogueEntry kReadingFields[] = {
    {kTypeText, "RouteNbr", false, 0, 0, ""},
    {kTypeNumber, "Sequence", false, 0, 0, ""},
    {kTypeNumber, "MeterTagNbr", false, 0, 0, ""},
    {kTypeText, "MeterType", false, 0, 0, ""},
    {kTypeInteger, "Digits", false, 0, 0, ""},
    {kTypeInteger, "Decimals", false, 0, 0, ""},
    {kTypeNumber, "PrvReading", false, 0, 0, ""},
    {kTypeNumber, "MaxReading", false, 0, 0, ""},
    {kTypeNumber, "MinReading", false, 0, 0, ""},
    {kTypeNumber, "CurReading", false, 0, 0, ""},
    {kTypeDate, "ReadingDate", false, 0, 0, ""},
    {kTypeTime, "ReadingTime", false, 0, 0, ""},
    {kTypeInteger, "Status", false, 0, 0, ""},
    {kTypeInteger, "ReadType", false, 0, 0, ""},
    {kTypeLong, "ResponseCode", false, 0, 0, ""},
    {kTypeDate, "LstReadingDate", false, 0, 0, ""},
    {kTypeLong, "TamperCount", false, 0, 0, ""},
    {kTypeInteger, "UtilityCode", false, 0, 0, ""},
    {kTypeInteger, "Signal", false, 0, 0, ""},
    {kTypeNumber, "Lat", false, 0, 0, ""},
    {kTypeNumber, "Lng", false, 0, 0, ""},
    {kTypeNumber, "ScaleFactor", false, 0, 0, "Pulse Scaling (434)"},
    {kTypeNumber, "InitReading", false, 0, 0, "Initial Reading(434)"},
    {kTypeNumber, "InitPulseCount", false, 0, 0, "Initial Pulse Count(434)"},
    {kTypeLong, "InitTamperCount", false, 0, 0, "Initial Tamper Count(434)"},
    {kTypeText, "Initials", false, 0, 0, ""},
    {kTypeText, "ResponseText", false, 0, 0, ""},
    {kTypeText, "Message", false, 0, 0, ""},
    {kTypeText, "ServiceAddress", false, 0, 0, ""},
    {kTypeText, "BillingName", false, 0, 0, ""},
    {kTypeText, "ServiceUniqueID", false, 0, 0, ""},
    {kTypeText, "MeterSerialNbr", false, 0, 0, ""},
    {kTypeText, "ReceiverData", false, 0, 0, ""},
    {kTypeText, "User1", false, 0, 0, ""},
    {kTypeText, "User2", false, 0, 0, ""},
    {kTypeText, "User3", false, 0, 0, ""},
    {kTypeText, "User4", false, 0, 0, ""},
    {kTypeText, "User5", false, 0, 0, ""},
};

// The last four hold the tag numbers of nearby meters in an orphan record,
// whatever their names say; LstReadingDate is a number here on purpose.
constexpr CatalogueEntry kOrphanFields[] = {
    {kTypeNumber, "MeterTagNbr", false, 0, 0, ""},
    {kTypeNumber, "CurReading", false, 0, 0, ""},
    {kTypeDate, "ReadingDate", false, 0, 0, ""},
    {kTypeTime, "ReadingTime", false, 0, 0, ""},
    {kTypeLong, "TamperCount", false, 0, 0, ""},
    {kTypeInteger, "UtilityCode", false, 0, 0, ""},
    {kTypeNumber, "PrvReading", false, 0, 0, "NearbyTagNbr1"},
    {kTypeNumber, "MaxReading", false, 0, 0, "NearbyTagNbr2"},
    {kTypeNumber, "MinReading", false, 0, 0, "NearbyTagNbr3"},
    {kTypeNumber, "LstReadingDate", false, 0, 0, "NearbyTagNbr4"},
};

using Words = std::pair<int32_t, std::string_view>;

constexpr Words kTypeWords[] = {{1, "Fixed"}, {2, "Delimited"}, {3, "MVRS"}, {4, "E5000"}};

constexpr Words kOptionWords[] = {{1, "Do Not Map"},           {2, "Map from Source"},
                                  {3, "Map Constant"},         {4, "Prompt"},
                                  {5, "Write to Destination"}, {6, "Autonumber"}};

constexpr Words kFilterWords[] = {
    {0, "All Entries"}, {1, "Only Readings"}, {2, "Readings/Exceptions"}, {3, "Unread"}};

constexpr Words kTerminatorWords[] = {
    {0, "<none>"}, {1, "<cr>"}, {2, "<lf>"}, {3, "<crlf>"}, {4, "<null>"}};

// Tens: the order of the parts; units: 1 "-", 2 "/" (":" for times), 4 a
// four-digit year.
constexpr Words kFormatWords[] = {
    {20, "MMDDYY"},     {21, "MM-DD-YY"},   {22, "MM/DD/YY"},   {24, "MMDDYYYY"},
    {25, "MM-DD-YYYY"}, {26, "MM/DD/YYYY"}, {10, "YYMMDD"},     {11, "YY-MM-DD"},
    {12, "YY/MM/DD"},   {14, "YYYYMMDD"},   {15, "YYYY-MM-DD"}, {16, "YYYY/MM/DD"},
    {30, "DDMMYY"},     {31, "DD-MM-YY"},   {32, "DD/MM/YY"},   {34, "DDMMYYYY"},
    {35, "DD-MM-YYYY"}, {36, "DD/MM/YYYY"}, {40, "HHMM"},       {42, "HH:MM"},
    {41, "HHMMSS"},     {43, "HH:MM:SS"}};

std::string_view WordsOf(std::span<const Words> table, int32_t code) {
  const auto it =
      std::find_if(table.begin(), table.end(), [code](const Words& w) { return w.first == code; });
  return it == table.end() ? std::string_view() : it->second;
}

}  // namespace

std::span<const CatalogueEntry> MapCatalogue(int32_t use) {
  switch (use) {
    case kUseRoute:
    case kUseReRead: return kRouteFields;
    case kUseReading: return kReadingFields;
    case kUseOrphan: return kOrphanFields;
    default: return {};
  }
}

std::string_view MapTypeText(int32_t type) { return WordsOf(kTypeWords, type); }
std::string_view MapOptionText(int32_t option) { return WordsOf(kOptionWords, option); }
std::string_view MapFilterText(int32_t filter) { return WordsOf(kFilterWords, filter); }
std::string_view MapTerminatorText(int32_t terminator) {
  return WordsOf(kTerminatorWords, terminator);
}
std::string_view MapFormatText(int32_t format) { return WordsOf(kFormatWords, format); }

std::vector<int32_t> OfferedMapOptions(int32_t use, std::string_view fieldName) {
  if (use == kUseRoute || use == kUseReRead) {
    if (fieldName == "Sequence") {
      return {kOptionDoNotMap, kOptionSource, kOptionAutonumber};
    }
    return {kOptionDoNotMap, kOptionSource, kOptionConstant, kOptionPrompt};
  }
  return {kOptionDoNotMap, kOptionDestination};
}

}  // namespace hifx
