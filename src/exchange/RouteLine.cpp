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

void RouteLine::ThrowInvalidCall() { throw Failure(fail::kInvalidCall); }

}  // namespace hifx
