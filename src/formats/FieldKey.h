// A field name fixed for the life of the program, with a number of its own:
// a line kind finds the field of a key once, and from then on by the number
// alone, without comparing the name again. Conversions that set the same
// fields line after line name them by key.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace hifx {

class FieldKey {
 public:
  explicit FieldKey(std::string_view name);
  FieldKey(const FieldKey&) = delete;
  FieldKey& operator=(const FieldKey&) = delete;

  std::string_view Name() const { return name_; }
  size_t Number() const { return number_; }

 private:
  std::string_view name_;
  size_t number_;
};

// A literal name as a template argument.
template <size_t N>
struct FieldNameText {
  constexpr FieldNameText(const char (&text)[N]) { std::copy_n(text, N, chars); }  // NOLINT: made from literals
  char chars[N];
};

// The one key of a literal name: Key<"RouteNumber">().
template <FieldNameText Name>
const FieldKey& Key() {
  static const FieldKey key(std::string_view(Name.chars, sizeof Name.chars - 1));
  return key;
}

}  // namespace hifx
