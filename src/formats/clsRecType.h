// One kind of fixed-column record: the text that identifies its lines and
// its fields in order. A file class builds one per kind and reuses it for
// every line; conversions then work by field name only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/CaseBlind.h"
#include "base/KeyedCollection.h"
#include "base/Shell.h"
#include "base/Value.h"
#include "formats/clsField.h"

namespace hifx {

class clsRecType {
 public:
  // Messages of the record type (an unknown field type, a failed line) are
  // shown through the shell when one is given.
  explicit clsRecType(IShell* shell = nullptr) : shell_(shell) {}

  std::string RawText;  // the line last given to Parse
  int16_t IDStart = 0;
  int16_t IDLength = 0;
  std::string IDText;

  void SetID(int16_t start, int16_t length, std::string id);
  // Appends a field; start 0 places it straight behind the fields so far.
  // A name already present, in any case, is failure 457.
  void AddField(std::string fieldName, int16_t fieldType, int16_t start, int16_t length);
  // The sum of the widths of all fields ever added.
  int16_t RecLen() const { return recLen_; }
  // True when the identifying columns of the line hold IDText, case and all.
  bool TestID(std::string_view line) const;
  void ClearFields();
  void ClearValues();
  // Every field's value from the line; fields past its end read as zeros.
  // A value is taken from the line when it is first asked for.
  void Parse(std::string_view line);
  // Walks the fields as a debugging aid would; leaves no trace.
  std::string Dump() const;
  // The value of a field, or empty when it has none.
  Value GetValue(std::string_view name) const;
  void SetValue(std::string_view name, Value value);
  // Clears the values; always false.
  bool Init();
  // The line made from the values, padded with blanks to `length` but never
  // cut. Fields without a value are skipped; a failure is shown and gives an
  // empty text.
  std::string Buffer(int16_t length) const;

  const std::vector<clsField>& Fields() const { return fields_; }

 private:
  const clsField* FindField(std::string_view name, size_t& slot) const;
  // The field's value as it stands: set, parsed, or none.
  const std::optional<Value>& ValueAt(size_t slot) const;
  static bool KnownType(int16_t fieldType);

  // A field's value, valid while its generation is the record's.
  struct Slot {
    uint32_t generation = 0;
    std::optional<Value> value;
  };

  IShell* shell_;
  int16_t recLen_ = 0;
  std::vector<clsField> fields_;
  mutable std::vector<Slot> slots_;  // one a field, in field order
  // Clearing the values starts a new generation, which every slot is behind.
  uint32_t generation_ = 1;
  // Since the last Parse: a field with no slot of this generation reads from
  // RawText.
  bool parsed_ = false;
  KeyedCollection<Value> otherValues_;  // set under names no field has
};

}  // namespace hifx
