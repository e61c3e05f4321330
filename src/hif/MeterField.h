// The fields of a meter record that the conversions fill and read, named
// here once, so that a run finds each in the record's schema and in its map
// once and not again for every meter. A map's fields carry the same names.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace hifx {

enum class MeterField : uint8_t {
  RecType,
  RouteNbr,
  Sequence,
  MeterTagNbr,
  MeterType,
  Digits,
  Decimals,
  PrvReading,
  MaxReading,
  MinReading,
  ReadType,
  LstReadingDate,
  UtilityCode,
  Lat,
  Lng,
  ScaleFactor,
  InitReading,
  InitPulseCount,
  InitTamperCount,
  Message,
  ServiceAddress,
  BillingName,
  ServiceUniqueID,
  MeterSerialNbr,
  ReceiverData,
  User1,
  User2,
  User3,
  User4,
  User5,
  CurReading,
  Status,
  ReadingDate,
  ReadingTime,
  ResponseCode,
  Initials,
  ResponseText,
};

inline constexpr size_t kMeterFieldCount = static_cast<size_t>(MeterField::ResponseText) + 1;

inline constexpr std::array<std::string_view, kMeterFieldCount> kMeterFieldNames = {
    "RecType",        "RouteNbr",       "Sequence",        "MeterTagNbr",    "MeterType",      "Digits",
    "Decimals",       "PrvReading",     "MaxReading",      "MinReading",     "ReadType",       "LstReadingDate",
    "UtilityCode",    "Lat",            "Lng",             "ScaleFactor",    "InitReading",    "InitPulseCount",
    "InitTamperCount", "Message",       "ServiceAddress",  "BillingName",    "ServiceUniqueID", "MeterSerialNbr",
    "ReceiverData",   "User1",          "User2",           "User3",          "User4",          "User5",
    "CurReading",     "Status",         "ReadingDate",     "ReadingTime",    "ResponseCode",   "Initials",
    "ResponseText"};

constexpr std::string_view NameOf(MeterField field) { return kMeterFieldNames[static_cast<size_t>(field)]; }
constexpr size_t IndexOf(MeterField field) { return static_cast<size_t>(field); }

}  // namespace hifx
