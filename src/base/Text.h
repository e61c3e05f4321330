// Blanks off the ends of a text. A blank is ' ' only: a tab may be a
// delimiter, and other white space is data; only a hand-edited text file's
// lines lose all white space.
#pragma once

#include <string_view>

namespace hifx {

// The text without its blanks at both ends, as a view into the same
// characters: a caller that keeps it makes its own string.
constexpr std::string_view Trim(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// The same, off the right end only.
constexpr std::string_view TrimRight(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// Equal texts, compared a byte at a time: for the few letters of a record
// kind, a call of memcmp costs more than the comparing.
constexpr bool SameShortText(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i]) return false;
  }
  return true;
}

// The text without white space (blank, tab, CR, LF) at both ends: for lines
// of a text file edited by hand, where a tab or a line end is no data.
constexpr std::string_view TrimWhiteSpace(std::string_view text) {
  constexpr std::string_view kWhite = " \t\r\n";
  while (!text.empty() && kWhite.find(text.front()) != std::string_view::npos) text.remove_prefix(1);
  while (!text.empty() && kWhite.find(text.back()) != std::string_view::npos) text.remove_suffix(1);
  return text;
}

}  // namespace hifx
