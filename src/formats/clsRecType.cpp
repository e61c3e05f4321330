#include "formats/clsRecType.h"

#include "base/Failure.h"

namespace hifx {

void clsRecType::SetID(int16_t start, int16_t length, std::string id) {
  IDStart = start;
  IDLength = length;
  IDText = std::move(id);
}

void clsRecType::AddField(std::string fieldName, int16_t fieldType, int16_t start, int16_t length) {
  if (byName_.count(fieldName) != 0) throw Failure(fail::kDuplicateKey);
  clsField field;
  field.FieldName = std::move(fieldName);
  field.FieldType = fieldType;
  field.Start = start == 0 ? static_cast<int16_t>(recLen_ + 1) : start;
  field.Length = length;
  recLen_ = static_cast<int16_t>(recLen_ + length);
  byName_.emplace(field.FieldName, fields_.size());
  fields_.push_back(std::move(field));
  values_.emplace_back();
}

bool clsRecType::TestID(std::string_view line) const {
  if (IDStart < 1 || IDLength < 0) return false;
  const auto start = static_cast<size_t>(IDStart - 1);
  const std::string_view id = start < line.size() ? line.substr(start, static_cast<size_t>(IDLength)) : std::string_view();
  return id == IDText;
}

void clsRecType::ClearFields() {
  fields_.clear();
  byName_.clear();
  values_.clear();
}

void clsRecType::ClearValues() {
  for (auto& value : values_) value.reset();
  otherValues_ = KeyedCollection<Value>();
}

void clsRecType::Parse(std::string_view line) {
  ClearValues();
  RawText.assign(line);
  for (size_t i = 0; i < fields_.size(); ++i) values_[i] = fields_[i].Extract(line, shell_);
}

std::string clsRecType::Dump() const {
  for (const clsField& field : fields_) (void)field.Extract(RawText);
  return {};
}

const clsField* clsRecType::FindField(std::string_view name, size_t& slot) const {
  const auto it = byName_.find(name);
  if (it == byName_.end()) return nullptr;
  slot = it->second;
  return &fields_[slot];
}

Value clsRecType::GetValue(std::string_view name) const {
  size_t slot = 0;
  if (FindField(name, slot) != nullptr) return values_[slot].value_or(Value());
  return otherValues_.Contains(name) ? otherValues_.Item(name) : Value();
}

void clsRecType::SetValue(std::string_view name, Value value) {
  size_t slot = 0;
  if (FindField(name, slot) != nullptr) {
    values_[slot] = std::move(value);
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
      if (values_[i]) fields_[i].Insert(line, *values_[i], shell_);
    }
  } catch (const Failure& failure) {
    if (shell_ != nullptr) shell_->MsgBox(failure.Description());
    return {};
  }
  if (length >= 1 && line.size() < static_cast<size_t>(length)) line.resize(static_cast<size_t>(length), ' ');
  return line;
}

}  // namespace hifx
