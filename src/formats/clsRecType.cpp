#include "formats/clsRecType.h"

#include <algorithm>
#include <cstring>

#include "base/Failure.h"

namespace hifx {

namespace {

// Length and the first, middle and last letters of a name, case folded: two
// names that differ here can't be equal.
uint32_t Signature(std::string_view name) {
  if (name.empty()) return 0;
  const auto letter = [](char c) { return static_cast<uint32_t>(static_cast<unsigned char>(FoldCase(c))); };
  return static_cast<uint32_t>(name.size() & 0xFF) | letter(name.front()) << 8 | letter(name[name.size() / 2]) << 16 |
         letter(name.back()) << 24;
}

// Byte for byte, a word at a time: names are short, and this runs for every
// value set.
bool SameText(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  const char* x = a.data();
  const char* y = b.data();
  size_t n = a.size();
  for (; n >= 8; n -= 8, x += 8, y += 8) {
    uint64_t u = 0;
    uint64_t v = 0;
    std::memcpy(&u, x, 8);
    std::memcpy(&v, y, 8);
    if (u != v) return false;
  }
  for (; n > 0; --n) {
    if (*x++ != *y++) return false;
  }
  return true;
}

}  // namespace

void clsRecType::SetID(int16_t start, int16_t length, std::string id) {
  IDStart = start;
  IDLength = length;
  IDText = std::move(id);
}

void clsRecType::AddField(std::string fieldName, int16_t fieldType, int16_t start, int16_t length) {
  size_t existing = 0;
  if (FindField(fieldName, existing) != nullptr) throw Failure(fail::kDuplicateKey);
  clsField field;
  field.FieldName = std::move(fieldName);
  field.FieldType = fieldType;
  field.Start = start == 0 ? static_cast<int16_t>(recLen_ + 1) : start;
  field.Length = length;
  recLen_ = static_cast<int16_t>(recLen_ + length);
  const uint32_t signature = Signature(field.FieldName);
  signatures_.push_back(signature);
  fields_.push_back(std::move(field));
  if (fields_.size() > kTableSize / 2) throw Failure(fail::kOutOfMemory);
  size_t at = SlotOf(signature);
  while (table_[at] != 0) at = (at + 1) & (kTableSize - 1);
  table_[at] = static_cast<uint16_t>(fields_.size());
  slotOfKey_.clear();  // a key no field had may have one now
  values_.emplace_back();
  set_.push_back(0);
  pending_.push_back(0);
}

void clsRecType::ClearFields() {
  fields_.clear();
  signatures_.clear();
  table_.fill(0);
  hits_.fill(NameHit{});
  hitCount_ = 0;
  slotOfKey_.clear();
  values_.clear();
  set_.clear();
  pending_.clear();
}

void clsRecType::ClearValues() {
  std::fill(set_.begin(), set_.end(), uint8_t{0});
  std::fill(pending_.begin(), pending_.end(), uint8_t{0});
  if (otherValues_.Count() > 0) otherValues_ = KeyedCollection<Value>();
}

void clsRecType::Parse(std::string_view line) {
  ClearValues();
  RawText.assign(line);
  // Every field has a value from now on; each is taken from the line when
  // first asked for.
  parsedLine_.assign(line);
  std::fill(pending_.begin(), pending_.end(), uint8_t{1});
}

std::string clsRecType::Dump() const {
  for (const clsField& field : fields_) (void)field.Extract(RawText);
  return {};
}

size_t clsRecType::SlotOf(uint32_t signature) {
  return static_cast<size_t>((signature * 2654435761u) >> (32 - kTableBits));
}

clsRecType::NameHit* clsRecType::HitFor(const char* address) const {
  const auto key = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(address));
  for (size_t at = static_cast<size_t>((key * 0x9E3779B97F4A7C15ull) >> (64 - kHitCacheBits));;
       at = (at + 1) & (kHitCacheSize - 1)) {
    NameHit& hit = hits_[at];
    if (hit.name == address) return &hit;
    if (hit.name == nullptr) {
      if (hitCount_ >= kHitCacheSize / 2) return nullptr;
      ++hitCount_;
      hit.name = address;
      hit.slot = SIZE_MAX;  // not found yet
      return &hit;
    }
  }
}

const clsField* clsRecType::FindField(std::string_view name, size_t& slot) const {
  // Conversions name fields by the same literal texts line after line: where
  // a text was found is remembered by its address, and checked.
  NameHit* hit = name.data() != nullptr ? HitFor(name.data()) : nullptr;
  if (hit != nullptr && hit->slot < fields_.size() && SameText(fields_[hit->slot].FieldName, name)) {
    slot = hit->slot;
    return &fields_[slot];
  }
  return FindFieldByName(name, slot, hit);
}

const clsField* clsRecType::FindFieldByName(std::string_view name, size_t& slot, NameHit* hit) const {
  const uint32_t signature = Signature(name);
  for (size_t at = SlotOf(signature);; at = (at + 1) & (kTableSize - 1)) {
    const uint16_t entry = table_[at];
    if (entry == 0) return nullptr;
    const size_t i = entry - 1u;
    const std::string& fieldName = fields_[i].FieldName;
    if (signatures_[i] == signature && (fieldName == name || EqualsCaseBlind(fieldName, name))) {
      slot = i;
      if (hit != nullptr) hit->slot = i;
      return &fields_[i];
    }
  }
}

void clsRecType::TakeFromLine(size_t slot) const {
  values_[slot] = fields_[slot].Extract(parsedLine_, shell_);
  set_[slot] = 1;
  pending_[slot] = 0;
}

const Value& clsRecType::ValueOf(const clsField* field, size_t slot, std::string_view name) const {
  static const Value kNone;
  if (field != nullptr) {
    Materialize(slot);
    return set_[slot] != 0 ? values_[slot] : kNone;
  }
  return otherValues_.Contains(name) ? otherValues_.Item(name) : kNone;
}

std::string clsRecType::TextOfField(const clsField* field, size_t slot, std::string_view name) const {
  if (field != nullptr && pending_[slot] != 0 && field->FieldType == fldText) {
    return std::string(field->Columns(parsedLine_));
  }
  const Value& value = ValueOf(field, slot, name);
  return value.IsText() ? value.Text() : TextOf(value);
}

int32_t clsRecType::NumberOfField(const clsField* field, size_t slot, std::string_view name) const {
  if (field != nullptr && pending_[slot] != 0 && field->FieldType == fldZeroNumber) {
    return clsField::LeadingNumber(field->Columns(parsedLine_));
  }
  return NumberOf(ValueOf(field, slot, name));
}

const Value& clsRecType::GetValue(std::string_view name) const {
  size_t slot = 0;
  const clsField* field = FindField(name, slot);
  return ValueOf(field, slot, name);
}

std::string clsRecType::GetText(std::string_view name) const {
  size_t slot = 0;
  const clsField* field = FindField(name, slot);
  return TextOfField(field, slot, name);
}

std::string clsRecType::GetText(const FieldKey& key) const {
  size_t slot = 0;
  const clsField* field = FindField(key, slot);
  return TextOfField(field, slot, key.Name());
}

void clsRecType::GetText(const FieldKey& key, std::string& into) const {
  size_t slot = 0;
  const clsField* field = FindField(key, slot);
  if (field != nullptr && pending_[slot] != 0 && field->FieldType == fldText) {
    into.assign(field->Columns(parsedLine_));
  } else {
    into = TextOfField(field, slot, key.Name());
  }
}

int32_t clsRecType::GetNumber(std::string_view name) const {
  size_t slot = 0;
  const clsField* field = FindField(name, slot);
  return NumberOfField(field, slot, name);
}

int32_t clsRecType::GetNumber(const FieldKey& key) const {
  size_t slot = 0;
  const clsField* field = FindField(key, slot);
  return NumberOfField(field, slot, key.Name());
}

const clsField* clsRecType::FindField(const FieldKey& key, size_t& slot) const {
  if (key.Number() >= slotOfKey_.size()) slotOfKey_.resize(key.Number() + 1, 0);
  uint16_t& known = slotOfKey_[key.Number()];
  if (known == 0) {
    size_t found = 0;
    known = FindField(key.Name(), found) != nullptr ? static_cast<uint16_t>(found + 1) : kNoField;
  }
  if (known == kNoField) return nullptr;
  slot = known - 1u;
  return &fields_[slot];
}

Value& clsRecType::OtherValueToSet(std::string_view name) {
  if (!otherValues_.Contains(name)) otherValues_.Add(std::string(name), Value());
  return otherValues_.Item(name);
}

Value& clsRecType::ValueToSet(std::string_view name) {
  size_t slot = 0;
  const clsField* field = FindField(name, slot);
  return ValueToSet(field, slot, name);
}

Value& clsRecType::ValueToSet(const FieldKey& key) {
  size_t slot = 0;
  const clsField* field = FindField(key, slot);
  return ValueToSet(field, slot, key.Name());
}

void clsRecType::SetValue(std::string_view name, Value value) { ValueToSet(name) = std::move(value); }
void clsRecType::SetText(std::string_view name, std::string_view text) { ValueToSet(name).SetText(text); }
void clsRecType::SetLong(std::string_view name, int32_t number) { ValueToSet(name).SetLong(number); }
void clsRecType::SetValue(const FieldKey& key, Value value) { ValueToSet(key) = std::move(value); }
void clsRecType::SetText(const FieldKey& key, std::string_view text) { ValueToSet(key).SetText(text); }
void clsRecType::SetLong(const FieldKey& key, int32_t number) { ValueToSet(key).SetLong(number); }

bool clsRecType::Init() {
  ClearValues();
  return false;
}

std::string clsRecType::Buffer(int16_t length) const {
  // Blanks as wide as the record, the fields written over them, and the line
  // cut back to the end of the last field written.
  const size_t padded = length >= 1 ? static_cast<size_t>(length) : 0;
  std::string line(std::max<size_t>(static_cast<size_t>(std::max<int16_t>(recLen_, 0)), padded), ' ');
  size_t end = 0;
  try {
    for (size_t i = 0; i < fields_.size(); ++i) {
      Materialize(i);
      if (set_[i] == 0) continue;
      const clsField& field = fields_[i];
      if (field.Start < 1 || field.Length < 0) throw Failure(fail::kInvalidCall);
      const auto start = static_cast<size_t>(field.Start - 1);
      const size_t stop = start + static_cast<size_t>(field.Length);
      if (line.size() < stop) line.resize(stop, ' ');
      field.Render(line.data() + start, values_[i], shell_);
      end = std::max(end, stop);
    }
  } catch (const Failure& failure) {
    if (shell_ != nullptr) shell_->MsgBox(failure.Description());
    return {};
  }
  line.resize(std::max(end, padded));
  return line;
}

}  // namespace hifx
