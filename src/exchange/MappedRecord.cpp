#include "exchange/MappedRecord.h"

#include <algorithm>

#include "base/Failure.h"

namespace hifx {

void MappedRecord::Plan(const clsExchMap& map, const clsPalmDB& db) {
  schemaIndex_.clear();
  for (const MapField& field : map.Fields()) schemaIndex_.push_back(db.FindItem(field.FieldName));
  namesOnce_ = true;
  for (int16_t i = 1; i <= db.FieldCount(); ++i) namesOnce_ = namesOnce_ && db.Field(i).firstOfName;
  fixedColumn_.assign(map.Fields().size(), 0);
  fixedLength_ = 0;
  for (size_t i = 0; i < map.Fields().size(); ++i) {
    const MapField& field = map.Fields()[i];
    if (field.MapOption != kOptionDestination) continue;
    const auto start = static_cast<size_t>(std::max<int32_t>(field.DataPosition, 1)) - 1;
    const auto width = static_cast<size_t>(std::max<int32_t>(field.DataWidth, 0));
    fixedLength_ = std::max(fixedLength_, start);  // blanks up to the field
    fixedColumn_[i] = fixedLength_ <= start + 1 ? fixedLength_ : start;
    fixedLength_ = std::max(fixedLength_, fixedColumn_[i] + width);
  }
}

void MappedRecord::Read(clsPalmDB& db) {
  db_ = &db;
  values_.resize(static_cast<size_t>(db.FieldCount()) + 1);
  readIn_.resize(values_.size());
  ++record_;
  // A whole record reads without a message, so each field is read when it
  // is first asked for.
  if (namesOnce_ && db.HoldsEveryNumber()) return;
  for (int16_t i = 1; i <= db.FieldCount(); ++i) {
    Take(static_cast<size_t>(i));
    // A name met twice fails as the keyed collection of a record would.
    if (!db.Field(i).firstOfName) throw Failure(fail::kDuplicateKey);
  }
}

Value& MappedRecord::Take(size_t index) {
  if (readIn_[index] != record_) {
    db_->ReadItem(static_cast<int32_t>(index), values_[index]);
    readIn_[index] = record_;
  }
  return values_[index];
}

const Value* MappedRecord::ForMapField(size_t position) {
  const int16_t index = position < schemaIndex_.size() ? schemaIndex_[position] : int16_t{0};
  return index > 0 && static_cast<size_t>(index) < values_.size() ? &Take(static_cast<size_t>(index)) : nullptr;
}

Value& MappedRecord::At(int16_t index) {
  if (index < 1 || static_cast<size_t>(index) >= values_.size()) throw Failure(fail::kInvalidCall);
  return Take(static_cast<size_t>(index));
}

}  // namespace hifx
