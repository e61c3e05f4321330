#include "hif/clsIndex.h"

#include <algorithm>
#include <numeric>

namespace hifx {

void clsIndex::Insert(std::string key, int16_t number) {
  keys_.push_back(std::move(key));
  numbers_.push_back(number);
}

void clsIndex::Sort() {
  // The result of a stable bubble sort on the keys' bytes, in n log n.
  std::vector<size_t> order(keys_.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return keys_[a] < keys_[b]; });
  std::vector<std::string> keys;
  std::vector<int16_t> numbers;
  keys.reserve(order.size());
  numbers.reserve(order.size());
  for (const size_t i : order) {
    keys.push_back(std::move(keys_[i]));
    numbers.push_back(numbers_[i]);
  }
  keys_ = std::move(keys);
  numbers_ = std::move(numbers);
}

void clsIndex::WriteRecord(clsHIF& hif) {
  if (keys_.empty()) return;
  Sort();
  hif.AddIndexRecord(Route, static_cast<int16_t>(IndexType), Count(), keys_, numbers_);
  keys_.clear();
  numbers_.clear();
}

}  // namespace hifx
