#include "base/Value.h"

#include <cmath>
#include <cstdio>

#include "base/Clock.h"
#include "base/DateSerial.h"
#include "base/Failure.h"
#include "base/Numbers.h"

namespace hifx {
namespace {

std::string FormatFloat(double v, int significant) {
  if (v == 0.0) return "0";
  if (std::isnan(v) || std::isinf(v)) return "0";
  if (v == std::trunc(v) && std::fabs(v) < 1e15) {
    return std::to_string(static_cast<int64_t>(v));
  }
  char buf[48];
  std::snprintf(buf, sizeof buf, "%.*G", significant, v);
  // "%G" drops trailing zeros of the fraction and writes exponents with a
  // sign and at least two digits (1E+20, 1E-05), the form the system shows.
  return buf;
}

}  // namespace

void Value::SetText(std::string_view text) {
  if (auto* held = std::get_if<std::string>(&data_)) {
    held->assign(text);
  } else {
    data_ = std::string(text);
  }
}

void Value::ThrowNotText() { throw Failure(fail::kTypeMismatch); }

double Value::ToDouble() const {
  switch (Kind()) {
    case ValueKind::Empty: return 0.0;
    case ValueKind::Null: throw Failure(fail::kInvalidNull);
    case ValueKind::Integer: return std::get<int16_t>(data_);
    case ValueKind::Long: return std::get<int32_t>(data_);
    case ValueKind::Single: return std::get<float>(data_);
    case ValueKind::Double: return std::get<double>(data_);
    case ValueKind::Date: return std::get<DateTag>(data_).serial;
    case ValueKind::Text: {
      double v = 0.0;
      if (!ParseWholeNumber(std::get<std::string>(data_), v)) throw Failure(fail::kTypeMismatch);
      return v;
    }
  }
  return 0.0;
}

int16_t Value::ToInt16() const { return hifx::ToInt16(ToDouble()); }
int32_t Value::RoundedToInt32() const {
  if (Kind() == ValueKind::Integer) return std::get<int16_t>(data_);
  return hifx::ToInt32(ToDouble());
}

std::string Value::ToText() const {
  switch (Kind()) {
    case ValueKind::Empty: return {};
    case ValueKind::Null: throw Failure(fail::kInvalidNull);
    case ValueKind::Integer: return std::to_string(std::get<int16_t>(data_));
    case ValueKind::Long: return std::to_string(std::get<int32_t>(data_));
    case ValueKind::Single: return FormatFloat(std::get<float>(data_), 7);
    case ValueKind::Double: return FormatFloat(std::get<double>(data_), 15);
    case ValueKind::Date: {
      // The short date of the run log and the reports: one date form
      // everywhere a date becomes text.
      const CivilTime t = FromDateValue(std::get<DateTag>(data_).serial);
      if (t.hour == 0 && t.minute == 0 && t.second == 0) return ShortDate(t);
      char time[16];
      std::snprintf(time, sizeof time, " %02d:%02d:%02d", t.hour, t.minute, t.second);
      return ShortDate(t) + time;
    }
    case ValueKind::Text: return std::get<std::string>(data_);
  }
  return {};
}

std::string TextOf(const Value& value) {
  if (value.IsText()) return value.Text();
  if (value.IsEmpty() || value.IsNull()) return {};
  return value.ToText();
}

std::string_view TextOf(const Value& value, std::string& room) {
  if (value.IsText()) return value.Text();
  room = TextOf(value);
  return room;
}

int32_t NumberOf(const Value& value) {
  if (value.IsEmpty() || value.IsNull()) return 0;
  return value.IsText() ? ToInt32(NumericPrefix(value.Text())) : value.ToInt32();
}

}  // namespace hifx
