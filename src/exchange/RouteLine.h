// One parsed line of a flat route file: a value for each field of its map,
// in the map's order. The fields a conversion asks for by name are found
// among the map's once for the run, so a line is filled and read by place.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "base/Value.h"
#include "hif/MeterField.h"
#include "maps/clsExchMap.h"

namespace hifx {

class RouteLine {
 public:
  // Finds the named fields among the map's.
  void Plan(const clsExchMap& map);
  // Every field without a value, ready for the next line of fields fields.
  void Clear(size_t fields);
  // The value of the field at position, its place in the map from 0, to be
  // filled in place and counted as given. Inline, as these run for every
  // field of every line.
  Value& Slot(size_t position) {
    if (position >= values_.size()) ThrowInvalidCall();
    filled_[position] = 1;
    return values_[position];
  }
  const Value& At(size_t position) const {
    if (position >= values_.size() || filled_[position] == 0) ThrowInvalidCall();
    return values_[position];
  }
  // The value of a named field: failure 5 when the map has no such field or
  // the line no value for it, as a look-up of a missing name is.
  const Value& operator[](MeterField field) const {
    const int32_t position = positions_[IndexOf(field)];
    if (position < 0) ThrowInvalidCall();
    return At(static_cast<size_t>(position));
  }
  // Whether the map's field at position is the named one.
  bool Is(size_t position, MeterField field) const {
    return positions_[IndexOf(field)] == static_cast<int32_t>(position);
  }

 private:
  [[noreturn]] static void ThrowInvalidCall();
  std::array<int32_t, kMeterFieldCount> positions_{};  // -1 for a field the map lacks
  std::vector<Value> values_;
  std::vector<char> filled_;
};

}  // namespace hifx
