#include "base/Csv.h"

namespace hifx {

void AppendCsvField(std::string& out, std::string_view field) {
  if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
    out += field;
    return;
  }
  out += '"';
  for (const char c : field) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

void AppendCsvRecord(std::string& out, const std::vector<std::string>& fields) {
  for (size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) out += ',';
    AppendCsvField(out, fields[i]);
  }
  out += "\r\n";
}

}  // namespace hifx
