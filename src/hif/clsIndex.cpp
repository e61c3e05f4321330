#include "hif/clsIndex.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace hifx {

void clsIndex::Insert(std::string key, int16_t number) {
  keys_.push_back(std::move(key));
  numbers_.push_back(number);
}

namespace {

// A key's first eight bytes as one number that orders as the bytes do, a
// short key padded with zeros: two keys whose heads differ are in the order
// of their heads; only equal heads need the whole keys compared.
uint64_t HeadOf(const std::string& key) {
  std::array<unsigned char, 8> bytes{};
  std::memcpy(bytes.data(), key.data(), std::min<size_t>(key.size(), bytes.size()));
  uint64_t head = 0;
  for (const unsigned char byte : bytes) head = head << 8 | byte;
  return head;
}

}  // namespace

void clsIndex::Sort() {
  // The result of a stable bubble sort on the keys' bytes, in n log n.
  struct Entry {
    uint64_t head;
    size_t size;
    size_t at;
  };
  std::vector<Entry> order(keys_.size());
  for (size_t i = 0; i < keys_.size(); ++i) order[i] = {HeadOf(keys_[i]), keys_[i].size(), i};
  std::stable_sort(order.begin(), order.end(), [&](const Entry& a, const Entry& b) {
    if (a.head != b.head) return a.head < b.head;
    // Two keys no longer than their heads differ only in trailing NULs.
    if (a.size <= 8 && b.size <= 8) return a.size < b.size;
    return keys_[a.at] < keys_[b.at];
  });
  std::vector<std::string> keys;
  std::vector<int16_t> numbers;
  keys.reserve(order.size());
  numbers.reserve(order.size());
  for (const Entry& entry : order) {
    keys.push_back(std::move(keys_[entry.at]));
    numbers.push_back(numbers_[entry.at]);
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
