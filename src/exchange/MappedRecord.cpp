#include "exchange/MappedRecord.h"

#include "base/Failure.h"

namespace hifx {

void MappedRecord::Plan(const clsExchMap& map, const clsPalmDB& db) {
  schemaIndex_.clear();
  for (const MapField& field : map.Fields()) schemaIndex_.push_back(db.FindItem(field.FieldName));
}

void MappedRecord::Read(clsPalmDB& db) {
  values_.resize(static_cast<size_t>(db.FieldCount()) + 1);
  for (int16_t i = 1; i <= db.FieldCount(); ++i) {
    db.ReadItem(i, values_[static_cast<size_t>(i)]);
    // A name met twice fails as the keyed collection of a record would.
    if (!db.Field(i).firstOfName) throw Failure(fail::kDuplicateKey);
  }
}

const Value* MappedRecord::ForMapField(size_t position) const {
  const int16_t index = position < schemaIndex_.size() ? schemaIndex_[position] : int16_t{0};
  return index > 0 && static_cast<size_t>(index) < values_.size() ? &values_[static_cast<size_t>(index)] : nullptr;
}

Value& MappedRecord::At(int16_t index) {
  if (index < 1 || static_cast<size_t>(index) >= values_.size()) throw Failure(fail::kInvalidCall);
  return values_[static_cast<size_t>(index)];
}

}  // namespace hifx
