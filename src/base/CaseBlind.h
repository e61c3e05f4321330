// Comparing and hashing names with no regard to case. Names are 8-bit texts;
// only the letters A to Z fold, so every other byte compares as itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

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

// A set of names compared with no regard to case, held in one open table of
// small slots and one run of text rather than a node a name: the tags of a
// route, where every meter adds one.
class CaseBlindSet {
 public:
  // Adds the name; false, with nothing added, when an equal one is there.
  bool Insert(std::string_view name);
  void Reserve(size_t names);
  void Clear();
  size_t Size() const { return size_; }

 private:
  struct Slot {
    uint32_t hash = 0;
    uint32_t at = 0;  // where the name's length lies in names_, from 1; 0 for a free slot
  };
  std::string_view NameAt(uint32_t at) const;
  size_t SlotOf(std::string_view name, uint32_t hash) const;
  void Rehash(size_t slots);

  std::vector<Slot> slots_;
  std::string names_;  // each name behind its length in 4 bytes
  size_t size_ = 0;
};

}  // namespace hifx
