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
    if (index_.contains(std::string_view(key))) throw Failure(fail::kDuplicateKey);
    index_.emplace(key, items_.size());
    items_.emplace_back(std::move(key), std::move(value));
  }

  bool Contains(std::string_view key) const { return index_.find(key) != index_.end(); }

  const T& Item(std::string_view key) const {
    const auto it = index_.find(key);
    if (it == index_.end()) throw Failure(fail::kInvalidCall);
    return items_[it->second].second;
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
    const auto it = index_.find(key);
    if (it == index_.end()) throw Failure(fail::kInvalidCall);
    const size_t at = it->second;
    index_.erase(it);
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
    for (auto& entry : index_) {
      if (entry.second > at) --entry.second;
    }
  }

  size_t Count() const { return items_.size(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  std::vector<std::pair<std::string, T>> items_;
  std::unordered_map<std::string, size_t, CaseBlindHash, CaseBlindEqual> index_;
};

}  // namespace hifx
