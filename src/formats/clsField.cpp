#include "formats/clsField.h"

#include <algorithm>

#include "base/DateText.h"
#include "base/Failure.h"
#include "base/Numbers.h"

namespace hifx {
namespace {

constexpr const char* kUndefinedType = "Undefined Field Type";

std::string Piece(std::string_view text, size_t from, size_t count) {
  if (from >= text.size()) return {};
  return std::string(text.substr(from, count));
}

// A value that stands for a number: a number or date, or a text that is one.
bool AsNumber(const Value& value, double& number) {
  switch (value.Kind()) {
    case ValueKind::Empty:
    case ValueKind::Null: return false;
    case ValueKind::Text: return ParseWholeNumber(value.Text(), number);
    default: number = value.ToDouble(); return true;
  }
}

bool AsDate(const Value& value, double& serial) {
  if (value.Kind() == ValueKind::Text) return ReadDateText(value.Text(), serial);
  return AsNumber(value, serial);
}

// A number format: numbers and numeric texts are padded with zeros, any
// other text passes unchanged.
std::string NumberFormat(const Value& value, int digits, int decimals = 0) {
  double number = 0.0;
  if (AsNumber(value, number)) return FormatZeros(number, digits, decimals);
  return TextOf(value);
}

std::string DateFormat(const Value& value, std::string_view pattern) {
  double serial = 0.0;
  if (AsDate(value, serial)) return FormatDateValue(serial, pattern);
  return TextOf(value);
}

bool IsZero(const Value& value) {
  double number = 0.0;
  return value.IsEmpty() || (AsNumber(value, number) && number == 0.0);
}

}  // namespace

int32_t clsField::LeadingNumber(std::string_view columns) {
  try {
    return ToInt32(NumericPrefix(columns));
  } catch (const Failure&) {
    return 0;
  }
}

Value clsField::Extract(std::string_view buffer, IShell* shell) const {
  const std::string_view text = Columns(buffer);
  double number = 0.0;
  double serial = 0.0;
  switch (FieldType) {
    case fldText: return Value(std::string(text));
    case fldInteger:
      try {
        if (ParseWholeNumber(text, number)) return Value::Integer(ToInt16(number));
      } catch (const Failure&) {
      }
      return Value::Integer(0);
    case fldLong:
      try {
        if (ParseWholeNumber(text, number)) return Value::Long(ToInt32(number));
      } catch (const Failure&) {
      }
      return Value::Long(0);
    case fldSingle:
      return Value::Single(ParseWholeNumber(text, number) ? static_cast<float>(number) : 0.0F);
    case fldDouble:
    case fldDecimal: return Value::Double(ParseWholeNumber(text, number) ? number : 0.0);
    case fldDate: {
      std::string date(text);
      if (Length == 6 || Length == 8) {
        date = Piece(text, 0, 2) + "/" + Piece(text, 2, 2) + "/" + Piece(text, 4, Length == 6 ? 2 : 4);
      }
      return Value::Date(ReadDateText(date, serial) ? serial : 0.0);
    }
    case fldDateTime: {
      const std::string stamp = Piece(text, 4, 2) + "/" + Piece(text, 6, 2) + "/" + Piece(text, 0, 4) + " " +
                                Piece(text, 8, 2) + ":" + Piece(text, 10, 2) + ":" + Piece(text, 12, 2);
      return ReadDateText(stamp, serial) ? Value::Date(serial) : Value();
    }
    case fldZeroNumber:
      return Value::Long(LeadingNumber(text));
    case fldTime:
      if (Length == 4) {
        return ReadDateText(Piece(text, 0, 2) + ":" + Piece(text, 2, 2), serial) ? Value::Date(serial) : Value();
      }
      if (Length == 6) {
        if (text == "      ") return Value::Date(0.0);
        const std::string time = Piece(text, 0, 2) + ":" + Piece(text, 2, 2) + ":" + Piece(text, 4, 2);
        return Value::Date(ReadDateText(time, serial) ? serial : 0.0);
      }
      return {};
    default:
      if (shell != nullptr) shell->MsgBox(kUndefinedType);
      return {};
  }
}

std::string clsField::FieldText(const Value& value, IShell* shell) const {
  switch (FieldType) {
    case fldText: return TextOf(value).substr(0, static_cast<size_t>(std::max<int16_t>(Length, 0)));
    case fldInteger:
    case fldZeroNumber: return NumberFormat(value, Length);
    case fldLong:
    case fldSingle:
    case fldDouble: return TextOf(value);
    case fldDecimal: return NumberFormat(value, Length - 3, 2);
    case fldDate:
      if (Length == 6) return IsZero(value) ? "000000" : DateFormat(value, "mmddyy");
      if (Length == 8) return IsZero(value) ? "00000000" : DateFormat(value, "mmddyyyy");
      return {};
    case fldDateTime: return DateFormat(value, "mmddyyyy hh:nn:ss");
    case fldTime:
      // The caller lays a time out as digits already: the value's own text
      // is what is written.
      if (Length == 4 || Length == 6) return TextOf(value).substr(0, static_cast<size_t>(Length));
      return {};
    default:
      if (shell != nullptr) shell->MsgBox(kUndefinedType);
      return {};
  }
}

void clsField::Render(char* columns, const Value& value, IShell* shell) const {
  const auto put = [this, columns](std::string_view text) { PutText(columns, text); };
  const ValueKind kind = value.Kind();
  if (kind == ValueKind::Text && (FieldType == fldText || (FieldType == fldTime && (Length == 4 || Length == 6)))) {
    put(value.Text());  // a text goes straight in
  } else if ((FieldType == fldZeroNumber || FieldType == fldInteger) &&
             (kind == ValueKind::Long || kind == ValueKind::Integer)) {
    RenderWhole(columns, value.ToInt32());
  } else {
    put(FieldText(value, shell));
  }
}

void clsField::RenderWhole(char* columns, int32_t number) const {
  const auto length = static_cast<size_t>(Length);
  if (number >= 0) {
    // Most numbers fit: their digits from the right, zeros in front.
    char* at = columns + length;
    auto n = static_cast<uint32_t>(number);
    while (at > columns) {
      *--at = static_cast<char>('0' + n % 10);
      n /= 10;
      if (n == 0) break;
    }
    if (n == 0) {
      std::fill(columns, at, '0');
      return;
    }
  }
  // Zeros to the width, the sign in front, cut to the field.
  char digits[32];
  char* at = digits + sizeof digits;
  uint64_t n = number < 0 ? 0 - static_cast<uint64_t>(static_cast<int64_t>(number)) : static_cast<uint64_t>(number);
  size_t written = 0;
  do {
    *--at = static_cast<char>('0' + n % 10);
    n /= 10;
    ++written;
  } while ((n > 0 || written < length) && at > digits + 1);
  if (number < 0) *--at = '-';
  PutText(columns, std::string_view(at, static_cast<size_t>(digits + sizeof digits - at)));
}

void clsField::Insert(std::string& buffer, const Value& value, IShell* shell) const {
  if (Start < 1 || Length < 0) throw Failure(fail::kInvalidCall);
  const auto start = static_cast<size_t>(Start - 1);
  const auto length = static_cast<size_t>(Length);
  if (buffer.size() < start + length) buffer.resize(start + length, ' ');
  Render(buffer.data() + start, value, shell);
}

}  // namespace hifx
