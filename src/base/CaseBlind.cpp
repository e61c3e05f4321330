#include "base/CaseBlind.h"

namespace hifx {

std::string UpperCase(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = FoldCase(c);
  return out;
}

}  // namespace hifx
