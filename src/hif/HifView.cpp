#include "hif/HifView.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdio>
#include <cstring>

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
// looked at in one go, the last few with harmless letters behind them; the
// lowest byte that matches is the first, as a borrow only runs upwards.
size_t NextToEscape(std::string_view text, size_t at) {
  static_assert(std::endian::native == std::endian::little, "the first byte is the lowest");
  constexpr uint64_t kOnes = 0x0101010101010101ull;
  constexpr uint64_t kHighs = 0x8080808080808080ull;
  const auto hasZeroByte = [](uint64_t x) { return (x - kOnes) & ~x & kHighs; };
  while (at < text.size()) {
    const size_t bytes = std::min<size_t>(8, text.size() - at);
    uint64_t x = kOnes * 'a';
    std::memcpy(&x, text.data() + at, bytes);
    const uint64_t found = (x & kHighs) | ((x - kOnes * 0x20) & ~x & kHighs) | hasZeroByte(x ^ (kOnes * 0x7F)) |
                           hasZeroByte(x ^ (kOnes * '"')) | hasZeroByte(x ^ (kOnes * '\\'));
    if (found != 0) return at + static_cast<size_t>(std::countr_zero(found)) / 8;
    at += bytes;
  }
  return text.size();
}

// The most a text takes as a quoted JSON string: every byte escaped.
constexpr size_t JsonTextRoom(size_t bytes) { return 6 * bytes + 2; }

// A byte JSON can't show as it is, escaped at `at`; returns where it ends.
char* PutEscaped(char* at, unsigned char c) {
  *at++ = '\\';
  if (c == '"' || c == '\\') {
    *at++ = static_cast<char>(c);
    return at;
  }
  // Bytes are shown as the Latin-1 characters of the same codes.
  static constexpr char kHex[] = "0123456789abcdef";
  std::memcpy(at, "u00", 3);
  at[3] = kHex[c >> 4];
  at[4] = kHex[c & 15];
  return at + 5;
}

// Text as a quoted JSON string written at `at`, which has its room; returns
// where it ends.
char* PutJsonText(char* at, std::string_view text) {
  *at++ = '"';
  // Plain stretches are copied whole; only the bytes between them are
  // escaped one by one.
  size_t plain = 0;
  for (size_t next = NextToEscape(text, 0); next < text.size(); next = NextToEscape(text, next + 1)) {
    const auto c = static_cast<unsigned char>(text[next]);
    at = std::copy_n(text.data() + plain, next - plain, at);
    plain = next + 1;
    at = PutEscaped(at, c);
  }
  at = std::copy_n(text.data() + plain, text.size() - plain, at);  // no move at all for an empty text
  *at++ = '"';
  return at;
}

// The bytes JSON shows as they are: from the blank to the tilde, but for a
// quote and a backslash.
constexpr std::array<bool, 256> kShownAsItIs = [] {
  std::array<bool, 256> shown{};
  for (int c = ' '; c <= '~'; ++c) shown[static_cast<size_t>(c)] = c != '"' && c != '\\';
  return shown;
}();

// The text of a record that starts at `from`, up to its NUL or `end`, as a
// quoted JSON string written at `at`, which has its room; `from` moves past
// the NUL. The texts of a record are short, so they are taken a byte at a
// time in one pass, without looking for the NUL first.
char* PutRecordText(char* at, const char*& from, const char* end) {
  *at++ = '"';
  const char* next = from;
  while (next < end) {
    const auto c = static_cast<unsigned char>(*next++);
    if (kShownAsItIs[c]) {
      *at++ = static_cast<char>(c);
    } else if (c == 0) {
      break;
    } else {
      at = PutEscaped(at, c);
    }
  }
  from = next;
  *at++ = '"';
  return at;
}

}  // namespace

void AppendJsonText(std::string& out, std::string_view text) {
  const size_t start = out.size();
  out.resize(start + JsonTextRoom(text.size()));
  out.resize(static_cast<size_t>(PutJsonText(out.data() + start, text) - out.data()));
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
  Plan(hif.DB());
  const size_t start = out.size();
  out.push_back('{');
  if (AppendInPlace(out, hif.DB())) {
    out.push_back('}');
    return;
  }
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

void RecordJsonWriter::Plan(const clsPalmDB& db) {
  if (db_ == &db && generation_ == db.SchemaGeneration()) return;
  db_ = &db;
  generation_ = db.SchemaGeneration();
  fields_.clear();
  inPlace_ = true;
  room_ = kKeyRoom;
  for (int16_t i = 1; i <= db.FieldCount(); ++i) {
    const clsPalmDB::SchemaField& field = db.Field(i);
    PlannedField& planned = fields_.emplace_back(PlannedField{i > 1 ? "," : "", {}, field.position, field.width});
    AppendJsonText(planned.key, field.name);
    planned.key.push_back(':');
    planned.key.copy(planned.shortKey.data(), kKeyRoom);
    room_ += planned.key.size() + (field.width > 0 ? kNumberRoom : JsonTextRoom(0));
    const bool known = field.type >= kFieldText && field.type <= kFieldInt32;
    if (!field.firstOfName || !known) inPlace_ = false;
  }
  const int16_t recType = db.FindItem("RecType");
  recType_ = recType > 0 && db.Field(recType).width > 0 ? &fields_[static_cast<size_t>(recType - 1)] : nullptr;
  if (recType_ == nullptr) inPlace_ = false;
}

bool RecordJsonWriter::AppendInPlace(std::string& out, const clsPalmDB& db) const {
  const std::string& raw = db.RawData();
  if (!inPlace_ || !db.HoldsEveryNumber()) return false;
  if (IsHandBuilt(db.NumberAt(recType_->position, recType_->width))) return false;
  const size_t start = out.size();
  out.resize(start + room_ + JsonTextRoom(raw.size()));
  char* at = out.data() + start;
  // The texts lie in the record in the order of their fields, each up to its
  // NUL, or to the record's end; those past the end are empty.
  const char* const rawEnd = raw.data() + raw.size();
  const char* nextText = raw.data() + std::min(static_cast<size_t>(std::max<int16_t>(db.FixedLength(), 0)), raw.size());
  for (const PlannedField& field : fields_) {
    const size_t keyLength = field.key.size();
    if (keyLength <= kKeyRoom) {
      std::memcpy(at, field.shortKey.data(), kKeyRoom);  // one fixed move; the tail is written over
    } else {
      std::memcpy(at, field.key.data(), keyLength);
    }
    at += keyLength;
    if (field.width > 0) {
      at = std::to_chars(at, at + kNumberRoom, db.NumberAt(field.position, field.width)).ptr;
    } else {
      at = PutRecordText(at, nextText, rawEnd);
    }
  }
  out.resize(static_cast<size_t>(at - out.data()));
  return true;
}

void RecordJsonWriter::AppendFields(std::string& out, clsPalmDB& db) {
  size_t field = 0;
  db.ForEachValue([&out, &field, this](const std::string&, const Value& value) {
    out += fields_[field++].key;
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
