#include "base/CaseBlind.h"

#include <algorithm>
#include <cstring>

#include "base/Failure.h"

namespace hifx {

std::string UpperCase(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = FoldCase(c);
  return out;
}

namespace {

uint32_t SlotHash(std::string_view name) {
  const uint64_t h = CaseBlindHash{}(name);
  return static_cast<uint32_t>(h ^ (h >> 32));
}

}  // namespace

std::string_view CaseBlindSet::NameAt(uint32_t at) const {
  uint32_t length = 0;
  std::memcpy(&length, names_.data() + (at - 1), sizeof length);
  return std::string_view(names_).substr(at - 1 + sizeof length, length);
}

size_t CaseBlindSet::SlotOf(std::string_view name, uint32_t hash) const {
  const size_t mask = slots_.size() - 1;
  size_t slot = hash & mask;
  while (slots_[slot].at != 0 && !(slots_[slot].hash == hash && EqualsCaseBlind(NameAt(slots_[slot].at), name))) {
    slot = (slot + 1) & mask;
  }
  return slot;
}

bool CaseBlindSet::Insert(std::string_view name) {
  if ((size_ + 1) * 2 > slots_.size()) Rehash(std::max<size_t>(16, slots_.size() * 2));
  const uint32_t hash = SlotHash(name);
  Slot& slot = slots_[SlotOf(name, hash)];
  if (slot.at != 0) return false;
  const auto length = static_cast<uint32_t>(name.size());
  if (name.size() > UINT32_MAX - sizeof length - names_.size()) throw Failure(fail::kOutOfMemory);
  const auto at = static_cast<uint32_t>(names_.size() + 1);
  names_.append(reinterpret_cast<const char*>(&length), sizeof length).append(name);
  slot = {hash, at};
  ++size_;
  return true;
}

void CaseBlindSet::Reserve(size_t names) {
  size_t slots = 16;
  while (slots < names * 2) slots *= 2;
  if (slots > slots_.size()) Rehash(slots);
}

void CaseBlindSet::Clear() {
  slots_.clear();
  names_.clear();
  size_ = 0;
}

void CaseBlindSet::Rehash(size_t slots) {
  std::vector<Slot> old(slots);
  slots_.swap(old);
  for (const Slot& slot : old) {
    if (slot.at != 0) slots_[SlotOf(NameAt(slot.at), slot.hash)] = slot;
  }
}

}  // namespace hifx
