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
    if (Find(key) != kNone) throw Failure(fail::kDuplicateKey);
    items_.emplace_back(std::move(key), std::move(value));
    if (items_.size() == kHashFrom) {
      for (size_t i = 0; i < items_.size(); ++i) index_.emplace(items_[i].first, i);
    } else if (items_.size() > kHashFrom) {
      index_.emplace(items_.back().first, items_.size() - 1);
    }
  }

  bool Contains(std::string_view key) const { return Find(key) != kNone; }

  const T& Item(std::string_view key) const {
    const size_t at = Find(key);
    if (at == kNone) throw Failure(fail::kInvalidCall);
    return items_[at].second;
  }

  // Position counted from 1, as the system's lists are.
  const T& Item(size_t position) const {
    if (position < 1 || position > items_.size()) throw Failure(fail::kInvalidCall);
    return items_[position - 1].second;
  }

  const std::string& Key(size_t position) const {
    if (position < 1 || position > items_.size()) throw Failure(fail::kInvalidCall);
    return items_[position - 1].first;
  }

  void Remove(std::string_view key) {
    const size_t at = Find(key);
    if (at == kNone) throw Failure(fail::kInvalidCall);
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
    index_.clear();
    if (items_.size() >= kHashFrom) {
      for (size_t i = 0; i < items_.size(); ++i) index_.emplace(items_[i].first, i);
    }
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
    if (items_.size() < kHashFrom) {
      for (size_t i = 0; i < items_.size(); ++i) {
        if (EqualsCaseBlind(items_[i].first, key)) return i;
      }
      return kNone;
    }
    const auto it = index_.find(key);
    return it == index_.end() ? kNone : it->second;
  }

  std::vector<std::pair<std::string, T>> items_;
  std::unordered_map<std::string, size_t, CaseBlindHash, CaseBlindEqual> index_;
};

}  // namespace hifx
