// Record catalogues as data: each record kind a list of fields with their
// widths and types, from which the record types are built in order.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "formats/clsRecType.h"

namespace hifx {

struct FieldSpec {
  const char* name;
  int16_t type;
  int16_t length;
};

struct RecordSpec {
  const char* id;
  std::vector<FieldSpec> fields;
};

// One record type a spec, identified by its identifier in the columns from
// the first on, every field placed behind the one before.
std::vector<std::unique_ptr<clsRecType>> BuildRecordTypes(const std::vector<RecordSpec>& specs, IShell* shell);

// Shorthands for catalogue tables.
constexpr FieldSpec Txt(const char* name, int16_t length) { return {name, fldText, length}; }
constexpr FieldSpec Num(const char* name, int16_t length) { return {name, fldZeroNumber, length}; }
constexpr FieldSpec Dat(const char* name, int16_t length) { return {name, fldDate, length}; }
constexpr FieldSpec Tim(const char* name, int16_t length) { return {name, fldTime, length}; }

}  // namespace hifx
