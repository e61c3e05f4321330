#include "hif/HifView.h"

#include <array>
#include <charconv>
#include <cstring>
#include <cstdio>

#include "base/Failure.h"

namespace hifx {
namespace {

constexpr std::array<const char*, 37> kMeterColumns = {
    "Sequence",       "MeterTagNbr",     "MeterType",    "Digits",       "Decimals",
    "PrvReading",     "MaxReading",      "MinReading",   "CurReading",   "ReadingDate",
    "ReadingTime",    "Status",          "ReadType",     "ResponseCode", "LstReadingDate",
    "TamperCount",    "UtilityCode",     "Signal",       "Lat",          "Lng",
    "ScaleFactor",    "InitReading",     "InitPulseCount", "InitTamperCount", "Initials",
    "ResponseText",   "Message",         "ServiceAddress", "BillingName",  "ServiceUniqueID",
    "MeterSerialNbr", "ReceiverData",    "User1",        "User2",        "User3",
    "User4",          "User5"};

std::string Cell(const Value& value) {
  if (value.IsNull() || value.IsEmpty()) return {};
  return value.ToText();
}

int32_t NumberOrMinusOne(const Value& value) {
  if (value.IsNull() || value.IsEmpty() || value.IsText()) return -1;
  return value.ToInt32();
}

bool IsHandBuilt(int32_t recType) {
  return recType == kRecLogins || recType == kRecCodes || recType == kRecIndex ||
         recType == kRecAlerts;
}

// Where the first byte from `at` on that JSON can't show as it is lies: a
// control byte, one above 0x7E, a quote or a backslash. Eight bytes are
// looked at in one go.
size_t NextToEscape(const std::string& text, size_t at) {
  constexpr uint64_t kOnes = 0x0101010101010101ull;
  constexpr uint64_t kHighs = 0x8080808080808080ull;
  const auto hasZeroByte = [](uint64_t x) { return (x - kOnes) & ~x & kHighs; };
  for (; at + 8 <= text.size(); at += 8) {
    uint64_t x = 0;
    std::memcpy(&x, text.data() + at, 8);
    const uint64_t found = (x & kHighs) | ((x - kOnes * 0x20) & ~x & kHighs) | hasZeroByte(x ^ (kOnes * 0x7F)) |
                           hasZeroByte(x ^ (kOnes * '"')) | hasZeroByte(x ^ (kOnes * '\\'));
    if (found != 0) break;
  }
  for (; at < text.size(); ++at) {
    const auto c = static_cast<unsigned char>(text[at]);
    if (c < 0x20 || c >= 0x7F || c == '"' || c == '\\') break;
  }
  return at;
}

}  // namespace

void AppendJsonText(std::string& out, const std::string& text) {
  out.push_back('"');
  // Plain stretches are copied whole; only the bytes between them are
  // escaped one by one.
  size_t plain = 0;
  for (size_t at = NextToEscape(text, 0); at < text.size(); at = NextToEscape(text, at + 1)) {
    const auto c = static_cast<unsigned char>(text[at]);
    out.append(text, plain, at - plain);
    plain = at + 1;
    if (c == '"' || c == '\\') {
      out.push_back('\\');
      out.push_back(static_cast<char>(c));
    } else {
      // Bytes are shown as the Latin-1 characters of the same codes.
      static constexpr char kHex[] = "0123456789abcdef";
      out.append("\\u00");
      out.push_back(kHex[c >> 4]);
      out.push_back(kHex[c & 15]);
    }
  }
  out.append(text, plain, std::string::npos);
  out.push_back('"');
}

HifView::HifView(IShell& shell) : shell_(shell), hif_(shell) {}

bool HifView::Display(const std::filesystem::path& fileName) {
  routes_ = TextTable{};
  if (hif_.OpenHIF(fileName)) {
    shell_.WriteLog("Error: Could not read HIF file");
    return false;
  }
  if (hif_.ReadData()) {
    const int32_t recType = NumberOrMinusOne(hif_.Item("RecType"));
    const int32_t version = NumberOrMinusOne(hif_.Item("MeterType"));
    if (recType == kRecFileHeader && version > 0) hif_.SetVersion(static_cast<int16_t>(version));
  }
  routes_.columns = {"Index", "Route", "Meters", "First Read", "Last Read"};
  hif_.Rewind();
  while (hif_.ReadData()) {
    const int32_t recType = NumberOrMinusOne(hif_.Item("RecType"));
    if (recType != kRecRouteHeader && recType != kRecRouteHeaderAlt) continue;
    // In a route record Sequence and MeterTagNbr carry the first and last read.
    routes_.rows.push_back({Cell(hif_.Item("RouteNbr")), Cell(hif_.Item("Initials")),
                            Cell(hif_.Item("PrvReading")), Cell(hif_.Item("Sequence")),
                            Cell(hif_.Item("MeterTagNbr"))});
  }
  return true;
}

std::vector<std::string> HifView::MeterColumns() { return {kMeterColumns.begin(), kMeterColumns.end()}; }

TextTable HifView::Meters(int32_t route) {
  TextTable table;
  table.columns = MeterColumns();
  hif_.Rewind();
  while (hif_.ReadData()) {
    if (NumberOrMinusOne(hif_.Item("RecType")) != kRecMeter) continue;
    if (NumberOrMinusOne(hif_.Item("RouteNbr")) != route) continue;
    std::vector<std::string> row;
    row.reserve(kMeterColumns.size());
    for (const char* name : kMeterColumns) row.push_back(Cell(hif_.Item(name)));
    table.rows.push_back(std::move(row));
  }
  return table;
}

std::string RecordToJson(clsHIF& hif) {
  std::string out;
  RecordJsonWriter().Append(out, hif);
  return out;
}

void RecordJsonWriter::Append(std::string& out, clsHIF& hif) {
  const size_t start = out.size();
  out.push_back('{');
  const std::string& raw = hif.RawData();
  const Value recType = raw.size() >= 2 ? hif.Item("RecType") : Value();
  if (!recType.IsEmpty() && IsHandBuilt(recType.ToInt32())) {
    try {
      out += "\"RecType\":" + recType.ToText();
      if (recType.ToInt32() == kRecIndex) {
        int32_t route = 0, type = 0, count = 0;
        std::vector<std::string> entries;
        hif.GetIndexRecord(route, type, count, entries);
        out += ",\"route\":" + std::to_string(route) + ",\"type\":" + std::to_string(type) +
               ",\"entries\":[";
        for (size_t i = 0; i < entries.size(); ++i) {
          if (i > 0) out.push_back(',');
          AppendJsonText(out, entries[i]);
        }
      } else {
        const CodeRecord record = ReadCodeRecord(raw);
        out += ",\"group\":" + std::to_string(record.group) + ",\"flag\":" +
               std::to_string(record.flag) + ",\"entries\":[";
        for (size_t i = 0; i < record.entries.size(); ++i) {
          out += i > 0 ? ",[" : "[";
          for (size_t k = 0; k < 3; ++k) {
            if (k > 0) out.push_back(',');
            AppendJsonText(out, record.entries[i][k]);
          }
          out.push_back(']');
        }
      }
      out += "]}";
      return;
    } catch (const Failure&) {
      // A record that can't be taken apart is shown as its bytes.
      out.resize(start);
      out += "{\"RecType\":" + recType.ToText() + ",\"hex\":\"";
      static constexpr char kHex[] = "0123456789abcdef";
      for (const char ch : raw) {
        out.push_back(kHex[static_cast<unsigned char>(ch) >> 4]);
        out.push_back(kHex[static_cast<unsigned char>(ch) & 15]);
      }
      out += "\"}";
      return;
    }
  }
  AppendFields(out, hif.DB());
  out.push_back('}');
}

void RecordJsonWriter::AppendFields(std::string& out, clsPalmDB& db) {
  if (db_ != &db || generation_ != db.SchemaGeneration()) {
    db_ = &db;
    generation_ = db.SchemaGeneration();
    keys_.clear();
    for (int16_t i = 1; i <= db.FieldCount(); ++i) {
      std::string& key = keys_.emplace_back(i > 1 ? "," : "");
      AppendJsonText(key, db.Field(i).name);
      key.push_back(':');
    }
  }
  size_t field = 0;
  db.ForEachValue([&out, &field, this](const std::string&, const Value& value) {
    out += keys_[field++];
    if (value.IsEmpty() || value.IsNull()) {
      out += "null";  // past the end of a short record
    } else if (value.IsText()) {
      AppendJsonText(out, value.Text());
    } else if (value.Kind() == ValueKind::Integer || value.Kind() == ValueKind::Long) {
      char digits[16];
      const auto end = std::to_chars(digits, digits + sizeof digits, value.ToInt32()).ptr;
      out.append(digits, end);
    } else {
      out += value.ToText();
    }
  });
}

}  // namespace hifx
