// The tagged value that fields, collections and settings carry: empty, null,
// a 16- or 32-bit integer, a single or double float, a date or a text.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace hifx {

enum class ValueKind { Empty, Null, Integer, Long, Single, Double, Date, Text };

class Value {
 public:
  Value() = default;  // empty
  Value(std::string text) : data_(std::move(text)) {}   // NOLINT: texts are values
  Value(const char* text) : data_(std::string(text)) {}  // NOLINT

  static Value Null() { return Value(NullTag{}); }
  static Value Integer(int16_t v) { return Value(v); }
  static Value Long(int32_t v) { return Value(v); }
  static Value Single(float v) { return Value(v); }
  static Value Double(double v) { return Value(v); }
  static Value Date(double serial) { return Value(DateTag{serial}); }

  ValueKind Kind() const { return static_cast<ValueKind>(data_.index()); }
  bool IsEmpty() const { return Kind() == ValueKind::Empty; }
  bool IsNull() const { return Kind() == ValueKind::Null; }
  bool IsText() const { return Kind() == ValueKind::Text; }

  // The text of a text value; any other kind is a type mismatch.
  const std::string& Text() const {
    if (const auto* text = std::get_if<std::string>(&data_)) return *text;
    ThrowNotText();
  }
  // Makes the value the text, reusing the room of a text it holds.
  void SetText(std::string_view text);
  // Makes the value the number; one that holds a number of its kind is
  // simply overwritten, as a value kept from record to record mostly is.
  void SetInteger(int16_t v) { SetNumber(v); }
  void SetLong(int32_t v) { SetNumber(v); }
  void SetDouble(double v) { SetNumber(v); }

  // The value as a number. Empty is 0; a text must be one whole number;
  // null is an invalid use of null.
  double ToDouble() const;
  // As ToDouble, rounded half to even, with an overflow failure out of range.
  int16_t ToInt16() const;
  int32_t ToInt32() const {
    // A whole number is itself; only the others are rounded.
    if (const auto* whole = std::get_if<int32_t>(&data_)) return *whole;
    return RoundedToInt32();
  }

  // The number of a Long, or null.
  const int32_t* IfLong() const { return std::get_if<int32_t>(&data_); }
  // A Long, an Integer, or a Double with no fraction within the Long's
  // range: that whole number, which ToInt32 gives without rounding.
  bool IsWholeNumber(int32_t& number) const {
    if (const auto* whole = std::get_if<int32_t>(&data_)) {
      number = *whole;
      return true;
    }
    if (const auto* small = std::get_if<int16_t>(&data_)) {
      number = *small;
      return true;
    }
    const auto* real = std::get_if<double>(&data_);
    if (real == nullptr || !(*real >= -2147483648.0 && *real <= 2147483647.0) || *real != std::trunc(*real)) {
      return false;
    }
    number = static_cast<int32_t>(*real);
    return true;
  }

  // The value as a text: numbers in their shortest decimal form, dates as
  // yyyy-mm-dd with the time when it is not midnight, empty as "".
  std::string ToText() const;

  bool operator==(const Value& other) const = default;

 private:
  struct NullTag {
    bool operator==(const NullTag&) const = default;
  };
  struct DateTag {
    double serial;
    bool operator==(const DateTag&) const = default;
  };
  template <typename T>
  explicit Value(T v) : data_(v) {}
  template <typename T>
  void SetNumber(T v) {
    if (auto* held = std::get_if<T>(&data_)) {
      *held = v;
    } else {
      data_.template emplace<T>(v);
    }
  }
  int32_t RoundedToInt32() const;
  [[noreturn]] static void ThrowNotText();

  std::variant<std::monostate, NullTag, int16_t, int32_t, float, double, DateTag, std::string> data_;
};

// The value as a text: a text as it is, empty and null as "", anything else
// in its text form.
std::string TextOf(const Value& value);
// The same text, viewed where it lies when the value is a text and written
// into `room` when it is not.
std::string_view TextOf(const Value& value, std::string& room);

// A field's value as a whole number: empty and null as 0, a text by its
// leading number.
int32_t NumberOf(const Value& value);

}  // namespace hifx
