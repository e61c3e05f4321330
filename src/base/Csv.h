// Comma-separated values as spreadsheets read them: a field holding a comma,
// a double quote, a carriage return or a line feed is quoted, its quotes
// doubled; every record ends in CR LF.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hifx {

void AppendCsvField(std::string& out, std::string_view field);
// The fields comma-separated, then CR LF.
void AppendCsvRecord(std::string& out, const std::vector<std::string>& fields);

}  // namespace hifx
