#include "hif/clsIndex.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/CaseBlind.h"

namespace hifx {
namespace {

// A key's first eight bytes, a short key padded with zeros: two keys whose
// heads differ are in the order of their heads; only equal heads need the
// whole keys compared.
uint64_t HeadOf(std::string_view key) {
  uint64_t head = 0;
  const size_t size = std::min<size_t>(key.size(), 8);
  for (size_t i = 0; i < size; ++i) head |= uint64_t{static_cast<unsigned char>(key[i])} << (56 - 8 * i);
  return head;
}

}  // namespace

void clsIndex::Insert(std::string_view key, int16_t number) {
  entries_.push_back({HeadOf(key), static_cast<uint32_t>(text_.size()), static_cast<uint32_t>(key.size()), number});
  text_.append(key);
}

void clsIndex::InsertUpper(std::string_view key, int16_t number) {
  const size_t at = text_.size();
  text_.append(key);
  for (size_t i = at; i < text_.size(); ++i) text_[i] = FoldCase(text_[i]);
  const std::string_view folded = std::string_view(text_).substr(at);
  entries_.push_back({HeadOf(folded), static_cast<uint32_t>(at), static_cast<uint32_t>(key.size()), number});
}

// The result of a stable bubble sort on the keys' bytes, in linear time for
// the heads and n log n only among keys with equal heads.
void clsIndex::Sort() {
  SortByHead();
  SortEqualHeads();
}

// A stable radix sort on the heads, a byte a pass from the lowest, leaving
// out the passes of a byte all keys share.
void clsIndex::SortByHead() {
  std::array<std::array<uint32_t, 256>, 8> counts{};
  for (const Entry& entry : entries_) {
    for (size_t b = 0; b < 8; ++b) ++counts[b][(entry.head >> (8 * b)) & 0xFF];
  }
  spare_.resize(entries_.size());
  for (size_t b = 0; b < 8; ++b) {
    std::array<uint32_t, 256>& starts = counts[b];
    if (std::find(starts.begin(), starts.end(), entries_.size()) != starts.end()) continue;
    uint32_t next = 0;
    for (uint32_t& start : starts) next += std::exchange(start, next);
    for (const Entry& entry : entries_) spare_[starts[(entry.head >> (8 * b)) & 0xFF]++] = entry;
    entries_.swap(spare_);
  }
}

// Keys with the same head, in a stretch of their own, are put in order by
// their whole text; two no longer than their heads differ only in trailing
// NULs.
void clsIndex::SortEqualHeads() {
  const auto before = [this](const Entry& a, const Entry& b) {
    if (a.size <= 8 && b.size <= 8) return a.size < b.size;
    return KeyOf(a) < KeyOf(b);
  };
  for (auto first = entries_.begin(); first != entries_.end();) {
    const auto last =
        std::find_if(first + 1, entries_.end(), [&](const Entry& entry) { return entry.head != first->head; });
    // Mostly a word met again: the same key, already in order.
    if (last - first > 1 && !std::is_sorted(first, last, before)) std::stable_sort(first, last, before);
    first = last;
  }
}

std::vector<std::string_view> clsIndex::Keys() const {
  std::vector<std::string_view> keys;
  keys.reserve(entries_.size());
  for (const Entry& entry : entries_) keys.push_back(KeyOf(entry));
  return keys;
}

std::vector<int16_t> clsIndex::Numbers() const {
  std::vector<int16_t> numbers;
  numbers.reserve(entries_.size());
  for (const Entry& entry : entries_) numbers.push_back(entry.number);
  return numbers;
}

void clsIndex::WriteRecord(clsHIF& hif) {
  if (entries_.empty()) return;
  Sort();
  hif.AddIndexRecord(Route, static_cast<int16_t>(IndexType), Count(), Keys(), Numbers());
  entries_.clear();
  text_.clear();
}

}  // namespace hifx
