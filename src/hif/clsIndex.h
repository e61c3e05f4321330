// One index of one route: keys with the meter numbers filed under them,
// gathered while the route's meters are written and put out as one index
// record when the route ends.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hif/clsHIF.h"

namespace hifx {

class clsIndex {
 public:
  int16_t Route = 0;
  int32_t IndexType = 0;

  void Insert(std::string key, int16_t number);
  // Sorts and writes the record, then starts afresh; nothing when empty.
  void WriteRecord(clsHIF& hif);
  int32_t Count() const { return static_cast<int32_t>(keys_.size()); }

  // Keys in ascending byte order, equal keys keeping their order of
  // insertion, numbers carried along.
  void Sort();
  const std::vector<std::string>& Keys() const { return keys_; }
  const std::vector<int16_t>& Numbers() const { return numbers_; }

 private:
  std::vector<std::string> keys_;
  std::vector<int16_t> numbers_;
};

}  // namespace hifx
