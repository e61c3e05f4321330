// The hand-built records of a HIF: code lists and indexes, packed lists of
// 16-bit words at even offsets and NUL-closed texts, which the handheld walks
// in place.
#include "base/Failure.h"
#include "handheld/modPDB.h"
#include "hif/clsHIF.h"

namespace hifx {

void clsHIF::AddCodeRecord(int16_t recType, int16_t group, int16_t flag, int16_t count,
                           const std::vector<std::string>& texts1,
                           const std::vector<std::string>& texts2,
                           const std::vector<std::string>& texts3) {
  clsPalmDB& db = DB();
  db.AddNew();
  int16_t at = db.SetInt16(0, Value::Long(recType));
  at = db.SetInt16(at, Value::Long(group));
  at = db.SetInt16(at, Value::Long(flag));
  at = db.SetInt16(at, Value::Long(count));
  for (int16_t i = 0; i < count; ++i) {
    const size_t k = static_cast<size_t>(i);
    at = db.AppendString(at, k < texts1.size() ? texts1[k] : std::string(), true);
    at = db.AppendString(at, k < texts2.size() ? texts2[k] : std::string(), true);
    at = db.AppendString(at, k < texts3.size() ? texts3[k] : std::string(), true);
  }
  db.SetInt16(at, Value::Long(-1));
  db.WriteData();
}

namespace {

void AppendWord(std::string& record, int32_t value) {
  record.push_back(static_cast<char>((value & 0xFF00) / 256));
  record.push_back(static_cast<char>(value & 0xFF));
}

}  // namespace

void clsHIF::AddIndexRecord(int16_t route, int16_t type, int32_t count, const std::vector<std::string_view>& keys,
                            const std::vector<int16_t>& numbers) {
  clsPalmDB& db = DB();
  db.AddNew();
  if (count <= 0) {
    // The three words over the empty record.
    int16_t at = db.SetInt16(0, Value::Long(kRecIndex));
    at = db.SetInt16(at, Value::Long(route));
    db.SetInt16(at, Value::Long(type));
    db.WriteData();
    return;
  }
  // A group a key: the offset of the next group (-1 for the last), the key
  // packed to an even length, and the numbers filed under it.
  std::string record;
  size_t room = 6;
  for (const std::string_view key : keys) room += key.size() + 7;
  record.reserve(room);
  AppendWord(record, kRecIndex);
  AppendWord(record, route);
  AppendWord(record, type);
  size_t nextAt = 0;  // where the open group's next offset goes
  for (int32_t i = 0; i < count; ++i) {
    const std::string_view key = keys[static_cast<size_t>(i)];
    if (i == 0 || key != keys[static_cast<size_t>(i - 1)]) {
      if (i > 0) {
        record[nextAt] = static_cast<char>((record.size() & 0xFF00) / 256);
        record[nextAt + 1] = static_cast<char>(record.size() & 0xFF);
      }
      nextAt = record.size();
      AppendWord(record, -1);
      record.append(key);
      record.push_back('\0');
      if (record.size() % 2 == 1) record.push_back('\0');
    }
    AppendWord(record, numbers[static_cast<size_t>(i)]);
    // Offsets are 16-bit: an index past 32767 bytes overflows.
    if (record.size() > 32767) throw Failure(fail::kOverflow);
  }
  db.SetRawData(std::move(record));
  db.WriteData();
}

namespace {

int32_t WordAt(const std::string& raw, size_t offset) {
  if (offset + 2 > raw.size()) throw Failure(fail::kSubscript);
  return BytesToLong(std::span(reinterpret_cast<const uint8_t*>(raw.data()) + offset, 2));
}

// A packed text at offset: its bytes up to the NUL; offset moves behind the
// NUL and to the next even offset.
std::string PackedText(const std::string& raw, size_t& offset) {
  const size_t nul = raw.find('\0', offset);
  if (nul == std::string::npos) throw Failure(fail::kSubscript);
  std::string text = raw.substr(offset, nul - offset);
  offset = nul + 1;
  if (offset % 2 == 1) ++offset;
  return text;
}

}  // namespace

void clsHIF::GetIndexRecord(int32_t& route, int32_t& type, int32_t& count,
                            std::vector<std::string>& entries) {
  const std::string& raw = DB().RawData();
  route = WordAt(raw, 2);
  type = WordAt(raw, 4);
  count = 0;
  entries.clear();
  size_t at = 6;
  bool last = false;
  while (!last && at < raw.size()) {
    size_t next = static_cast<size_t>(WordAt(raw, at));
    if (next == 0xFFFF) {
      last = true;
      next = raw.size();
    }
    // An entry that does not move forward would be walked for ever.
    if (next <= at || next > raw.size()) throw Failure(fail::kSubscript);
    size_t p = at + 2;
    std::string entry = PackedText(raw, p);
    for (; p + 2 <= next; p += 2) entry += ":" + std::to_string(WordAt(raw, p));
    entries.push_back(std::move(entry));
    ++count;
    at = next;
  }
}

CodeRecord ReadCodeRecord(const std::string& raw) {
  CodeRecord record;
  record.recType = WordAt(raw, 0);
  record.group = WordAt(raw, 2);
  record.flag = WordAt(raw, 4);
  record.count = WordAt(raw, 6);
  size_t at = 8;
  for (int32_t i = 0; i < record.count; ++i) {
    std::array<std::string, 3> entry;
    for (std::string& text : entry) text = PackedText(raw, at);
    record.entries.push_back(std::move(entry));
  }
  return record;
}

}  // namespace hifx
