#include "hif/MeterDiff.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_map>

#include "base/Text.h"
#include "hif/clsHIF.h"

namespace hifx {
namespace {

std::string Trimmed(const Value& value) { return std::string(Trim(TextOf(value))); }

// The key a meter is paired under: its account, or for a meter without one
// its serial number or tag, which can't be mistaken for an account.
std::string PairingKey(const MeterPlace& m) {
  if (!m.account.empty()) return "A" + m.account;
  if (!m.serial.empty()) return "S" + m.serial;
  return "T" + std::to_string(m.tag);
}

bool SameMeter(const MeterPlace& a, const MeterPlace& b) {
  return a.serial == b.serial && a.tag == b.tag && a.type == b.type && a.digits == b.digits;
}

// Meters of the old file waiting to be paired under one key, in file order;
// next skips those already taken.
struct Waiting {
  std::vector<size_t> meters;
  size_t next = 0;
};

std::optional<size_t> TakeNext(Waiting& waiting, std::vector<bool>& paired) {
  while (waiting.next < waiting.meters.size() && paired[waiting.meters[waiting.next]]) ++waiting.next;
  if (waiting.next == waiting.meters.size()) return std::nullopt;
  const size_t taken = waiting.meters[waiting.next++];
  paired[taken] = true;
  return taken;
}

// For each meter of after, the meter of before it pairs with, or none: within
// a key first by serial number, then the rest in their order. Linear: each
// old meter is looked at a bounded number of times.
std::vector<std::optional<size_t>> Pair(const std::vector<MeterPlace>& before, const std::vector<MeterPlace>& after,
                                        std::vector<bool>& paired) {
  std::unordered_map<std::string, Waiting> bySerial, byKey;
  const auto serialKey = [](const MeterPlace& m) { return PairingKey(m) + '\0' + m.serial; };
  for (size_t o = 0; o < before.size(); ++o) {
    byKey[PairingKey(before[o])].meters.push_back(o);
    if (!before[o].serial.empty()) bySerial[serialKey(before[o])].meters.push_back(o);
  }
  std::vector<std::optional<size_t>> partner(after.size());
  for (size_t n = 0; n < after.size(); ++n) {
    if (after[n].serial.empty()) continue;
    const auto waiting = bySerial.find(serialKey(after[n]));
    if (waiting != bySerial.end()) partner[n] = TakeNext(waiting->second, paired);
  }
  for (size_t n = 0; n < after.size(); ++n) {
    if (partner[n]) continue;
    const auto waiting = byKey.find(PairingKey(after[n]));
    if (waiting != byKey.end()) partner[n] = TakeNext(waiting->second, paired);
  }
  return partner;
}

}  // namespace

int32_t MeterDiff::Count(MeterChange change) const {
  return static_cast<int32_t>(
      std::count_if(differences.begin(), differences.end(), [&](const auto& d) { return d.change == change; }));
}

std::string FromTo(const std::string& before, const std::string& after) {
  return before == after ? after : before + " -> " + after;
}

std::string FromTo(int32_t before, int32_t after) { return FromTo(std::to_string(before), std::to_string(after)); }

std::string ReplacedDetail(const MeterPlace& before, const MeterPlace& after) {
  std::string detail;
  const auto note = [&](const char* name, int32_t x, int32_t y) {
    if (x == y) return;
    detail += (detail.empty() ? "" : ", ") + std::string(name) + " " + FromTo(x, y);
  };
  note("tag", before.tag, after.tag);
  note("type", before.type, after.type);
  note("digits", before.digits, after.digits);
  return detail;
}

const char* ChangeWord(MeterChange change) {
  switch (change) {
    case MeterChange::Added: return "added";
    case MeterChange::Removed: return "removed";
    case MeterChange::Moved: return "moved";
    case MeterChange::Resequenced: return "sequence";
    case MeterChange::Replaced: return "meter";
  }
  return "";
}

std::vector<MeterPlace> ReadMeterPlaces(IShell& shell, const std::filesystem::path& file) {
  clsHIF hif(shell);
  OpenToRead(hif, file);
  std::vector<MeterPlace> meters;
  while (hif.ReadData()) {
    if (NumberOf(hif.Item("RecType")) != kRecMeter) continue;
    meters.push_back({Trimmed(hif.Item("ServiceUniqueID")), Trimmed(hif.Item("MeterSerialNbr")),
                      NumberOf(hif.Item("MeterTagNbr")), NumberOf(hif.Item("MeterType")),
                      NumberOf(hif.Item("Digits")), NumberOf(hif.Item("RouteNbr")), NumberOf(hif.Item("Sequence"))});
  }
  return meters;
}

MeterDiff CompareMeters(const std::vector<MeterPlace>& before, const std::vector<MeterPlace>& after) {
  std::vector<bool> paired(before.size());
  const auto partner = Pair(before, after, paired);
  std::array<std::vector<MeterDifference>, 5> byChange;
  const auto add = [&](MeterChange change, const MeterPlace& b, const MeterPlace& a) {
    byChange[static_cast<size_t>(change)].push_back({change, b, a});
  };
  MeterDiff diff;
  for (size_t n = 0; n < after.size(); ++n) {
    if (!partner[n]) {
      add(MeterChange::Added, {}, after[n]);
      continue;
    }
    const MeterPlace& old = before[*partner[n]];
    const bool moved = old.route != after[n].route;
    if (moved) add(MeterChange::Moved, old, after[n]);
    if (!moved && old.sequence != after[n].sequence) add(MeterChange::Resequenced, old, after[n]);
    if (!SameMeter(old, after[n])) add(MeterChange::Replaced, old, after[n]);
    if (!moved && old.sequence == after[n].sequence && SameMeter(old, after[n])) ++diff.unchanged;
  }
  for (size_t o = 0; o < before.size(); ++o) {
    if (!paired[o]) add(MeterChange::Removed, before[o], {});
  }
  for (auto& changes : byChange) {
    diff.differences.insert(diff.differences.end(), changes.begin(), changes.end());
  }
  return diff;
}

}  // namespace hifx
