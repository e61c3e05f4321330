#include "tools/docs/Roff.h"

namespace hifx::docs {

std::string RoffText(std::string_view words) {
  std::string roff;
  bool lineStart = true;
  for (const char c : words) {
    if (lineStart && (c == '.' || c == '\'')) roff += "\\&";
    if (c == '\\') {
      roff += "\\e";
    } else if (c == '-') {
      roff += "\\-";
    } else {
      roff += c;
    }
    lineStart = c == '\n';
  }
  return roff;
}

std::string RoffBold(std::string_view words) { return "\\fB" + RoffText(words) + "\\fR"; }

std::string RoffItalic(std::string_view words) { return "\\fI" + RoffText(words) + "\\fR"; }

}  // namespace hifx::docs
