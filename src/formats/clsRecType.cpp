#include "formats/clsRecType.h"

#include <algorithm>
#include <bit>
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
  if (fields_.size() >= kMaxFields) throw Failure(fail::kOutOfMemory);
  clsField field;
  field.FieldName = std::move(fieldName);
  field.FieldType = fieldType;
  field.Start = start == 0 ? static_cast<int16_t>(recLen_ + 1) : start;
  field.Length = length;
  recLen_ = static_cast<int16_t>(recLen_ + length);
  const uint32_t signature = Signature(field.FieldName);
  signatures_.push_back(signature);
  fields_.push_back(std::move(field));
  size_t at = SlotOf(signature);
  while (table_[at] != 0) at = (at + 1) & (kTableSize - 1);
  table_[at] = static_cast<uint16_t>(fields_.size());
  slotOfKey_.clear();  // a key no field had may have one now
  values_.emplace_back();
  state_.push_back(kUnset);
  textLength_.push_back(0);
  placement_.push_back(kOnBuild);
  stop_.push_back(0);
  PlanColumns();
}

void clsRecType::PlanColumns() {
  for (size_t slot = 0; slot < fields_.size(); ++slot) {
    if (state_[slot] == kTextInLine) TakeValue(slot);
    if (state_[slot] == kRendered) MarkSet(slot, kValue);
  }
  std::vector<std::pair<int32_t, int32_t>> spans;  // first column, past the last
  bool usable = true;
  for (const clsField& field : fields_) {
    usable = usable && field.Start >= 1 && field.Length >= 0;
    spans.emplace_back(field.Start, field.Start + field.Length);
  }
  std::sort(spans.begin(), spans.end());
  int32_t width = std::max<int32_t>(recLen_, 0) + 1;
  int32_t reach = 0;  // past the last column of the fields so far
  for (const auto& [first, past] : spans) {
    if (first < past && first < reach) usable = false;  // two fields share a column
    reach = std::max(reach, past);
  }
  width = std::max(width, reach);
  for (size_t slot = 0; slot < fields_.size(); ++slot) {
    const clsField& field = fields_[slot];
    const bool timeAsText = field.FieldType == fldTime && (field.Length == 4 || field.Length == 6);
    const bool whole = field.FieldType == fldZeroNumber || field.FieldType == fldInteger;
    placement_[slot] = !usable                                    ? kOnBuild
                       : field.FieldType == fldText || timeAsText ? kTextAtSet
                       : whole                                    ? kWholeAtSet
                                                                  : kOnBuild;
    stop_[slot] = field.Start >= 1 && field.Length >= 0 ? static_cast<size_t>(field.Start - 1 + field.Length) : 0;
  }
  everyStop_ = fields_.empty() ? 0 : *std::max_element(stop_.begin(), stop_.end());
  line_.assign(usable ? static_cast<size_t>(width - 1) : 0, ' ');
  lineWritten_ = false;
}

void clsRecType::ClearFields() {
  fields_.clear();
  signatures_.clear();
  table_.fill(0);
  hits_.fill(NameHit{});
  hitCount_ = 0;
  slotOfKey_.clear();
  values_.clear();
  state_.clear();
  textLength_.clear();
  placement_.clear();
  stop_.clear();
  line_.clear();
  lineWritten_ = false;
  toBuild_ = 0;
  end_ = 0;
  everyStop_ = 0;
}

void clsRecType::ClearValues() {
  std::fill(state_.begin(), state_.end(), uint8_t{kUnset});
  toBuild_ = 0;
  end_ = 0;
  if (lineWritten_) {
    std::fill(line_.begin(), line_.end(), ' ');
    lineWritten_ = false;
  }
  // A name no field has keeps its entry, empty as it reads when never set,
  // so that a kind set line after line adds none again.
  for (size_t i = 1; i <= otherValues_.Count(); ++i) otherValues_.Item(i) = Value();
}

void clsRecType::Parse(std::string_view line) {
  ClearValues();
  RawText.assign(line);
  // Every field has a value from now on; each is taken from the line when
  // first asked for.
  parsedLine_.assign(line);
  std::fill(state_.begin(), state_.end(), uint8_t{kPending});
  toBuild_ = fields_.size() == kMaxFields ? ~uint64_t{0} : (uint64_t{1} << fields_.size()) - 1;
  end_ = everyStop_;
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

void clsRecType::TakeValue(size_t slot) const {
  if (state_[slot] == kPending) {
    values_[slot] = fields_[slot].Extract(parsedLine_, shell_);
  } else {
    values_[slot].SetText(TextInLine(slot));
  }
  MarkSet(slot, state_[slot] == kPending ? kValue : kRendered);
}

const Value& clsRecType::ValueOf(const clsField* field, size_t slot, std::string_view name) const {
  static const Value kNone;
  if (field != nullptr) {
    Materialize(slot);
    return state_[slot] != kUnset ? values_[slot] : kNone;
  }
  return otherValues_.Contains(name) ? otherValues_.Item(name) : kNone;
}

std::string clsRecType::TextOfField(const clsField* field, size_t slot, std::string_view name) const {
  if (field != nullptr && state_[slot] == kPending && field->FieldType == fldText) {
    return std::string(field->Columns(parsedLine_));
  }
  if (field != nullptr && state_[slot] == kTextInLine) return std::string(TextInLine(slot));
  const Value& value = ValueOf(field, slot, name);
  return value.IsText() ? value.Text() : TextOf(value);
}

int32_t clsRecType::NumberOfField(const clsField* field, size_t slot, std::string_view name) const {
  if (field != nullptr && state_[slot] == kPending && field->FieldType == fldZeroNumber) {
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
  if (field != nullptr && state_[slot] == kPending && field->FieldType == fldText) {
    into.assign(field->Columns(parsedLine_));
  } else if (field != nullptr && state_[slot] == kTextInLine) {
    into.assign(TextInLine(slot));
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

namespace {

// A text of digits only that a zero-filled number field shows as it is,
// with zeros in front: its number is exact and no wider than the field.
bool IsPlainDigits(std::string_view text, int16_t width) {
  if (text.empty() || text.size() > static_cast<size_t>(width) || width > 15) return false;
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

void clsRecType::SetTextOf(const clsField* field, size_t slot, std::string_view name, std::string_view text) {
  if (field == nullptr || placement_[slot] == kOnBuild ||
      (placement_[slot] == kWholeAtSet && !IsPlainDigits(text, field->Length))) {
    ValueToSet(field, slot, name).SetText(text);
    return;
  }
  char* columns = line_.data() + (field->Start - 1);
  const auto width = static_cast<size_t>(field->Length);
  if (placement_[slot] == kWholeAtSet) {
    std::fill(columns, columns + (width - text.size()), '0');
    std::copy_n(text.data(), text.size(), columns + (width - text.size()));
  } else {
    field->PutText(columns, text);
  }
  lineWritten_ = true;
  // A text that stands whole at the start of its columns is read back from
  // them; a number's digits stand so only when they fill the field.
  if (text.size() <= width && (placement_[slot] == kTextAtSet || text.size() == width)) {
    textLength_[slot] = static_cast<uint16_t>(text.size());
    MarkSet(slot, kTextInLine);
  } else {
    values_[slot].SetText(text);  // not as its columns show it: kept apart
    MarkSet(slot, kRendered);
  }
}

void clsRecType::SetLongOf(const clsField* field, size_t slot, std::string_view name, int32_t number) {
  ValueToSet(field, slot, name).SetLong(number);
  if (field == nullptr || placement_[slot] != kWholeAtSet) return;
  field->RenderWhole(line_.data() + (field->Start - 1), number);
  lineWritten_ = true;
  MarkSet(slot, kRendered);
}

void clsRecType::SetValueOf(const clsField* field, size_t slot, std::string_view name, Value value) {
  if (field != nullptr && value.IsText()) {
    SetTextOf(field, slot, name, value.Text());
  } else if (field != nullptr && value.Kind() == ValueKind::Long) {
    SetLongOf(field, slot, name, value.ToInt32());
  } else {
    ValueToSet(field, slot, name) = std::move(value);
  }
}

void clsRecType::SetValue(std::string_view name, Value value) {
  size_t slot = 0;
  const clsField* field = FindField(name, slot);
  SetValueOf(field, slot, name, std::move(value));
}

void clsRecType::SetText(std::string_view name, std::string_view text) {
  size_t slot = 0;
  const clsField* field = FindField(name, slot);
  if (!SetTextIntoBlank(field, slot, text)) SetTextOf(field, slot, name, text);
}

void clsRecType::SetLong(std::string_view name, int32_t number) {
  size_t slot = 0;
  const clsField* field = FindField(name, slot);
  SetLongOf(field, slot, name, number);
}

void clsRecType::SetValue(const FieldKey& key, Value value) {
  size_t slot = 0;
  const clsField* field = FindField(key, slot);
  SetValueOf(field, slot, key.Name(), std::move(value));
}

void clsRecType::SetText(const FieldKey& key, std::string_view text) {
  size_t slot = 0;
  const clsField* field = FindField(key, slot);
  if (!SetTextIntoBlank(field, slot, text)) SetTextOf(field, slot, key.Name(), text);
}

void clsRecType::SetLong(const FieldKey& key, int32_t number) {
  size_t slot = 0;
  const clsField* field = FindField(key, slot);
  SetLongOf(field, slot, key.Name(), number);
}

bool clsRecType::Init() {
  ClearValues();
  return false;
}

std::string clsRecType::Buffer(int16_t length) const {
  std::string line;
  Buffer(length, line);
  return line;
}

void clsRecType::Buffer(int16_t length, std::string& line) const {
  // The line as the sets wrote it, the other fields written over it, and
  // the line cut back to the end of the last field set, but never below
  // the width asked for.
  const size_t padded = length >= 1 ? static_cast<size_t>(length) : 0;
  line.assign(line_);
  if (line.size() < padded) line.resize(padded, ' ');
  try {
    // In field order, so that of two fields sharing columns the later stands.
    for (uint64_t slots = toBuild_; slots != 0; slots &= slots - 1) {
      BuildField(static_cast<size_t>(std::countr_zero(slots)), line);
    }
  } catch (const Failure& failure) {
    if (shell_ != nullptr) shell_->MsgBox(failure.Description());
    line.clear();
    return;
  }
  line.resize(std::max(end_, padded));
}

void clsRecType::BuildField(size_t slot, std::string& line) const {
  Materialize(slot);
  const clsField& field = fields_[slot];
  if (field.Start < 1 || field.Length < 0) throw Failure(fail::kInvalidCall);
  if (line.size() < stop_[slot]) line.resize(stop_[slot], ' ');
  field.Render(line.data() + (field.Start - 1), values_[slot], shell_);
}

}  // namespace hifx
