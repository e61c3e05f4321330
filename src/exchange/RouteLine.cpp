#include "exchange/RouteLine.h"

#include "base/Failure.h"

namespace hifx {

void RouteLine::Plan(const clsExchMap& map) {
  for (size_t i = 0; i < kMeterFieldCount; ++i) positions_[i] = map.FindItem(kMeterFieldNames[i]) - 1;
}

void RouteLine::Clear(size_t fields) {
  values_.resize(fields);
  filled_.assign(fields, 0);
}

void RouteLine::Set(size_t position, Value value) { Slot(position) = std::move(value); }

Value& RouteLine::Slot(size_t position) {
  if (position >= values_.size()) throw Failure(fail::kInvalidCall);
  filled_[position] = 1;
  return values_[position];
}

const Value& RouteLine::At(size_t position) const {
  if (position >= values_.size() || filled_[position] == 0) throw Failure(fail::kInvalidCall);
  return values_[position];
}

const Value& RouteLine::operator[](MeterField field) const {
  const int32_t position = positions_[IndexOf(field)];
  if (position < 0) throw Failure(fail::kInvalidCall);
  return At(static_cast<size_t>(position));
}

}  // namespace hifx
