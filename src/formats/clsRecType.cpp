#include "formats/clsRecType.h"

#include "base/Failure.h"

namespace hifx {

void clsRecType::SetID(int16_t start, int16_t length, std::string id) {
  IDStart = start;
  IDLength = length;
  IDText = std::move(id);
}

void clsRecType::AddField(std::string fieldName, int16_t fieldType, int16_t start, int16_t length) {
  size_t present = 0;
  if (FindField(fieldName, present) != nullptr) throw Failure(fail::kDuplicateKey);
  clsField field;
  field.FieldName = std::move(fieldName);
  field.FieldType = fieldType;
  field.Start = start == 0 ? static_cast<int16_t>(recLen_ + 1) : start;
  field.Length = length;
  recLen_ = static_cast<int16_t>(recLen_ + length);
  fields_.push_back(std::move(field));
  slots_.emplace_back();
}

bool clsRecType::TestID(std::string_view line) const {
  if (IDStart < 1 || IDLength < 0) return false;
  const auto start = static_cast<size_t>(IDStart - 1);
  const std::string_view id = start < line.size() ? line.substr(start, static_cast<size_t>(IDLength)) : std::string_view();
  return id == IDText;
}

void clsRecType::ClearFields() {
  fields_.clear();
  slots_.clear();
}

void clsRecType::ClearValues() {
  if (++generation_ == 0) {
    // Round the counter: no slot may keep a generation that comes again.
    for (Slot& slot : slots_) slot.generation = 0;
    generation_ = 1;
  }
  parsed_ = false;
  if (otherValues_.Count() > 0) otherValues_ = KeyedCollection<Value>();
}

bool clsRecType::KnownType(int16_t fieldType) {
  switch (fieldType) {
    case fldText:
    case fldInteger:
    case fldLong:
    case fldSingle:
    case fldDouble:
    case fldDate:
    case fldDateTime:
    case fldDecimal:
    case fldZeroNumber:
    case fldTime: return true;
    default: return false;
  }
}

void clsRecType::Parse(std::string_view line) {
  ClearValues();
  RawText.assign(line);
  parsed_ = true;
  // A field of an unknown type is shown to the person as the line is read.
  for (size_t i = 0; i < fields_.size(); ++i) {
    if (!KnownType(fields_[i].FieldType)) ValueAt(i);
  }
}

const std::optional<Value>& clsRecType::ValueAt(size_t slot) const {
  Slot& s = slots_[slot];
  if (s.generation != generation_) {
    s.generation = generation_;
    if (parsed_) {
      s.value = fields_[slot].Extract(RawText, shell_);
    } else {
      s.value.reset();
    }
  }
  return s.value;
}

std::string clsRecType::Dump() const {
  for (const clsField& field : fields_) (void)field.Extract(RawText);
  return {};
}

const clsField* clsRecType::FindField(std::string_view name, size_t& slot) const {
  // A record has a few dozen fields at most: a walk through them, lengths
  // first, finds a name sooner than hashing it would.
  for (size_t i = 0; i < fields_.size(); ++i) {
    const std::string& field = fields_[i].FieldName;
    if (field.size() == name.size() && EqualsCaseBlind(field, name)) {
      slot = i;
      return &fields_[i];
    }
  }
  return nullptr;
}

Value clsRecType::GetValue(std::string_view name) const {
  size_t slot = 0;
  if (FindField(name, slot) != nullptr) return ValueAt(slot).value_or(Value());
  return otherValues_.Contains(name) ? otherValues_.Item(name) : Value();
}

void clsRecType::SetValue(std::string_view name, Value value) {
  size_t slot = 0;
  if (FindField(name, slot) != nullptr) {
    slots_[slot] = Slot{generation_, std::move(value)};
  } else if (otherValues_.Contains(name)) {
    otherValues_.Set(name, std::move(value));
  } else {
    otherValues_.Add(std::string(name), std::move(value));
  }
}

bool clsRecType::Init() {
  ClearValues();
  return false;
}

std::string clsRecType::Buffer(int16_t length) const {
  std::string line;
  try {
    for (size_t i = 0; i < fields_.size(); ++i) {
      if (const std::optional<Value>& value = ValueAt(i)) fields_[i].Insert(line, *value, shell_);
    }
  } catch (const Failure& failure) {
    if (shell_ != nullptr) shell_->MsgBox(failure.Description());
    return {};
  }
  if (length >= 1 && line.size() < static_cast<size_t>(length)) line.resize(static_cast<size_t>(length), ' ');
  return line;
}

}  // namespace hifx
