// Small text rules the conversions share.
#pragma once

#include <string>
#include <string_view>

#include "base/Numbers.h"
#include "base/Value.h"

namespace hifx {

// Blanks off both ends, or off the right end only.
inline std::string Trim(std::string_view s) {
  while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return std::string(s);
}

inline std::string TrimRight(std::string_view s) {
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return std::string(s);
}

// A field's value as a whole number: empty and null as 0, a text by its
// leading number.
inline int32_t NumberOf(const Value& v) {
  if (v.IsEmpty() || v.IsNull()) return 0;
  return v.IsText() ? ToInt32(NumericPrefix(v.Text())) : v.ToInt32();
}

}  // namespace hifx
