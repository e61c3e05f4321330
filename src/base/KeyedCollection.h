// A collection of values in order of addition, also reachable by a key that
// compares with no regard to case. Adding a key that is present is failure
// 457; asking for a key that is absent is failure 5.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/CaseBlind.h"
#include "base/Failure.h"

namespace hifx {

template <typename T>
class KeyedCollection {
 public:
  void Add(std::string key, T value) {
    const size_t hash = Signature(key);
    if (Find(key, hash) != kNone) throw Failure(fail::kDuplicateKey);
    items_.emplace_back(std::move(key), std::move(value));
    hashes_.push_back(hash);
    if (items_.size() == kHashFrom) {
      for (size_t i = 0; i < items_.size(); ++i) index_.emplace(items_[i].first, i);
    } else if (items_.size() > kHashFrom) {
      index_.emplace(items_.back().first, items_.size() - 1);
    }
  }

  bool Contains(std::string_view key) const { return Find(key) != kNone; }

  // Replaces the value of a present key, keeping its place; failure 5 for an
  // absent one.
  void Set(std::string_view key, T value) {
    const size_t at = Find(key);
    if (at == kNone) throw Failure(fail::kInvalidCall);
    items_[at].second = std::move(value);
  }

  const T& Item(std::string_view key) const {
    const size_t at = Find(key);
    if (at == kNone) throw Failure(fail::kInvalidCall);
    return items_[at].second;
  }
  T& Item(std::string_view key) { return const_cast<T&>(std::as_const(*this).Item(key)); }

  // Position counted from 1, as the system's lists are.
  const T& Item(size_t position) const {
    if (position < 1 || position > items_.size()) throw Failure(fail::kInvalidCall);
    return items_[position - 1].second;
  }
  T& Item(size_t position) { return const_cast<T&>(std::as_const(*this).Item(position)); }

  const std::string& Key(size_t position) const {
    if (position < 1 || position > items_.size()) throw Failure(fail::kInvalidCall);
    return items_[position - 1].first;
  }

  void Remove(std::string_view key) {
    const size_t at = Find(key);
    if (at == kNone) throw Failure(fail::kInvalidCall);
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
    hashes_.erase(hashes_.begin() + static_cast<std::ptrdiff_t>(at));
    lastHit_ = 0;
    index_.clear();
    if (items_.size() >= kHashFrom) {
      for (size_t i = 0; i < items_.size(); ++i) index_.emplace(items_[i].first, i);
    }
  }

  void Reserve(size_t count) {
    items_.reserve(count);
    hashes_.reserve(count);
  }

  size_t Count() const { return items_.size(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  static constexpr size_t kNone = static_cast<size_t>(-1);
  // Small collections, such as the fields of one record, are searched in
  // place; larger ones through a hash index.
  static constexpr size_t kHashFrom = 48;

  size_t Find(std::string_view key) const {
    // Items are mostly asked for in the order they were added.
    for (size_t next = lastHit_ + 1; next <= lastHit_ + 2 && next < items_.size(); ++next) {
      if (items_[next].first == key) return lastHit_ = next;
    }
    return Find(key, Signature(key));
  }

  // A cheap filter for the search in place: two keys equal with no regard
  // to case have the same length and the same first and last letters.
  static size_t Signature(std::string_view key) {
    if (key.empty()) return 0;
    return (key.size() << 16) | (static_cast<size_t>(static_cast<unsigned char>(FoldCase(key.front()))) << 8) |
           static_cast<unsigned char>(FoldCase(key.back()));
  }

  size_t Find(std::string_view key, size_t hash) const {
    if (items_.size() < kHashFrom) {
      for (size_t i = 0; i < items_.size(); ++i) {
        if (hashes_[i] == hash && EqualsCaseBlind(items_[i].first, key)) return lastHit_ = i;
      }
      return kNone;
    }
    const auto it = index_.find(key);
    if (it == index_.end()) return kNone;
    return lastHit_ = it->second;
  }

  std::vector<std::pair<std::string, T>> items_;
  std::vector<size_t> hashes_;  // the signature of each key
  mutable size_t lastHit_ = 0;
  std::unordered_map<std::string, size_t, CaseBlindHash, CaseBlindEqual> index_;
};

}  // namespace hifx
