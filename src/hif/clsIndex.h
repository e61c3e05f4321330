// One index of one route: keys with the meter numbers filed under them,
// gathered while the route's meters are written and put out as one index
// record when the route ends.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hif/clsHIF.h"

namespace hifx {

class clsIndex {
 public:
  int16_t Route = 0;
  int32_t IndexType = 0;

  void Insert(std::string_view key, int16_t number);
  // As Insert, the key in upper case.
  void InsertUpper(std::string_view key, int16_t number);
  // Sorts and writes the record, then starts afresh; nothing when empty.
  void WriteRecord(clsHIF& hif);
  int32_t Count() const { return static_cast<int32_t>(entries_.size()); }

  // Keys in ascending byte order, equal keys keeping their order of
  // insertion, numbers carried along.
  void Sort();
  std::vector<std::string_view> Keys() const;
  std::vector<int16_t> Numbers() const;

 private:
  // A key as its first eight bytes in one number that orders as the bytes
  // do, and where its whole text stands in text_.
  struct Entry {
    uint64_t head;
    uint32_t at;
    uint32_t size;
    int16_t number;
  };
  std::string_view KeyOf(const Entry& entry) const { return std::string_view(text_).substr(entry.at, entry.size); }
  void SortByHead();
  void SortEqualHeads();

  std::string text_;  // the keys one after another
  std::vector<Entry> entries_;
  std::vector<Entry> spare_;  // room for the sort's passes, kept for the next route
};

}  // namespace hifx
