// The values the operator entered at run time for the prompt fields of a map,
// kept for the length of a run.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace hifx {

class clsPrompts {
 public:
  void Clear() { values_.clear(); }
  // Appends a pair; a name given twice is kept twice.
  void Add(std::string name, std::string value) { values_.emplace_back(std::move(name), std::move(value)); }
  // The value of the first pair of exactly that name, else empty.
  std::string Value(std::string_view name) const {
    for (const auto& [n, v] : values_) {
      if (n == name) return v;
    }
    return {};
  }
  size_t Count() const { return values_.size(); }

 private:
  std::vector<std::pair<std::string, std::string>> values_;
};

}  // namespace hifx
