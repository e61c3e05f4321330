// Record catalogues as data: each record kind a list of fields with their
// widths and types, from which the record types are built in order.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
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

// The kinds of a catalogue by the first byte of their identifiers, each
// list in catalogue order: a line is tried only against the kinds it may
// be, and the first that matches is still the one found.
class RecordKinds {
 public:
  // Every kind is identified from the first column on, as BuildRecordTypes
  // makes them.
  void Add(clsRecType* type);
  // The first kind whose identifier the line holds, or null.
  clsRecType* Find(std::string_view line) const {
    if (line.empty()) return nullptr;
    for (clsRecType* type : byFirstByte_[static_cast<unsigned char>(line.front())]) {
      if (type->TestID(line)) return type;
    }
    return nullptr;
  }

 private:
  std::array<std::vector<clsRecType*>, 256> byFirstByte_;
};

// Shorthands for catalogue tables.
constexpr FieldLayout Txt(const char* name, int16_t length) { return {name, fldText, length}; }
constexpr FieldLayout Num(const char* name, int16_t length) { return {name, fldZeroNumber, length}; }
constexpr FieldLayout Dat(const char* name, int16_t length) { return {name, fldDate, length}; }
constexpr FieldLayout Tim(const char* name, int16_t length) { return {name, fldTime, length}; }

}  // namespace hifx
