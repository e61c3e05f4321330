// Small text rules the conversions share.
#pragma once

#include <string>
#include <string_view>

#include "base/Numbers.h"
#include "base/Value.h"

namespace hifx {

// Every occurrence of `from`, left to right, replaced by `to`; what a
// replacement puts in is not searched again.
inline void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  if (from.empty()) return;
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

}  // namespace hifx
