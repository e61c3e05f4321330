// Text made safe for roff, the manual pages' language.
#pragma once

#include <string>
#include <string_view>

namespace hifx::docs {

// Words as roff prints them: back slashes and hyphens escaped, and a line
// that would start with "." or "'" kept from being read as a request.
std::string RoffText(std::string_view words);
// The same in bold, and in italics.
std::string RoffBold(std::string_view words);
std::string RoffItalic(std::string_view words);

}  // namespace hifx::docs
