// Small text rules the conversions share.
#pragma once

#include <string>
#include <string_view>

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

}  // namespace hifx
