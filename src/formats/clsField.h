// One field of a fixed-column record: a name, a first column, a width and a
// type that says how its text reads into a value and how a value is written.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/Shell.h"
#include "base/Value.h"

namespace hifx {

// The field types of a record catalogue.
inline constexpr int16_t fldText = 8;
inline constexpr int16_t fldInteger = 2;
inline constexpr int16_t fldLong = 3;
inline constexpr int16_t fldSingle = 4;
inline constexpr int16_t fldDouble = 5;
inline constexpr int16_t fldDate = 7;
inline constexpr int16_t fldDateTime = -1;
inline constexpr int16_t fldDecimal = -2;
inline constexpr int16_t fldZeroNumber = -3;
inline constexpr int16_t fldTime = -4;

class clsField {
 public:
  std::string FieldName;
  int16_t Start = 0;  // first column, from 1
  int16_t FieldType = fldText;
  int16_t Length = 0;

  // The field's value in a line. A text that doesn't convert reads as the
  // type's zero; nothing is raised. An unknown type is shown to the person
  // (when there is a shell) and reads as empty.
  Value Extract(std::string_view buffer, IShell* shell = nullptr) const;
  // The number that the columns of a zero-filled number field hold: their
  // leading number, or 0 when it is too large.
  static int32_t LeadingNumber(std::string_view columns);
  // The field's columns of a line, as far as the line reaches.
  std::string_view Columns(std::string_view buffer) const {
    if (Start < 1 || Length < 0 || static_cast<size_t>(Start - 1) >= buffer.size()) return {};
    return buffer.substr(static_cast<size_t>(Start - 1), static_cast<size_t>(Length));
  }
  // Writes the value into its columns of the line, lengthening the line with
  // blanks as needed. Failures reach the caller.
  void Insert(std::string& buffer, const Value& value, IShell* shell = nullptr) const;
  // The field's text for the value, fitted to its Length columns at `columns`.
  void Render(char* columns, const Value& value, IShell* shell = nullptr) const;
  // A text in the field's columns at `columns`, cut to them or padded with
  // blanks.
  void PutText(char* columns, std::string_view text) const {
    const auto length = static_cast<size_t>(Length);
    const size_t used = std::min(text.size(), length);
    std::copy_n(text.data(), used, columns);
    std::fill(columns + used, columns + length, ' ');
  }
  // Render of a whole number into a zero-filled number or Integer field.
  void RenderWhole(char* columns, int32_t number) const;

 private:
  std::string FieldText(const Value& value, IShell* shell) const;
};

}  // namespace hifx
