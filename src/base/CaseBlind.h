// Comparing and hashing names with no regard to case. Names are 8-bit texts;
// only the letters A to Z fold, so every other byte compares as itself.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace hifx {

inline char FoldCase(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c; }

inline bool EqualsCaseBlind(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (FoldCase(a[i]) != FoldCase(b[i])) return false;
  }
  return true;
}

std::string UpperCase(std::string_view text);

// Hash and equality for unordered containers keyed by a case-blind name.
// Both are transparent, so a lookup by string_view allocates nothing.
struct CaseBlindHash {
  using is_transparent = void;
  size_t operator()(std::string_view s) const noexcept {
    size_t h = 14695981039346656037ull;
    for (char c : s) {
      h ^= static_cast<unsigned char>(FoldCase(c));
      h *= 1099511628211ull;
    }
    return h;
  }
};

struct CaseBlindEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const noexcept {
    return EqualsCaseBlind(a, b);
  }
};

}  // namespace hifx
