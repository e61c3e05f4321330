#include "formats/FieldKey.h"

#include <atomic>

namespace hifx {

FieldKey::FieldKey(std::string_view name) : name_(name) {
  static std::atomic<size_t> made{0};
  number_ = made++;
}

}  // namespace hifx
