// Record catalogues as data: each record kind a list of fields with their
// widths and types, from which the record types are built in order.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "formats/clsRecType.h"

namespace hifx {

struct FieldLayout {
  const char* name;
  int16_t type;
  int16_t length;
};

struct RecordLayout {
  const char* id;
  std::vector<FieldLayout> fields;
};

// One record type a layout, identified by its identifier in the columns from
// the first on, every field placed behind the one before.
std::vector<std::unique_ptr<clsRecType>> BuildRecordTypes(const std::vector<RecordLayout>& layouts, IShell* shell);

// Shorthands for catalogue tables.
constexpr FieldLayout Txt(const char* name, int16_t length) { return {name, fldText, length}; }
constexpr FieldLayout Num(const char* name, int16_t length) { return {name, fldZeroNumber, length}; }
constexpr FieldLayout Dat(const char* name, int16_t length) { return {name, fldDate, length}; }
constexpr FieldLayout Tim(const char* name, int16_t length) { return {name, fldTime, length}; }

}  // namespace hifx
