// Byte helpers of the handheld containers. All multi-byte integers in the
// handheld files are big-endian.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "base/Value.h"

namespace hifx {

// Decodes 1, 2 or 4 bytes, first byte most significant. A value that does not
// fit a signed 32-bit integer (a 4-byte value with its top bit set) gives 0.
// Inline, as every record read looks up its place through it.
inline int32_t BytesToLong(std::span<const uint8_t> bytes) {
  uint64_t value = 0;
  for (const uint8_t b : bytes) value = (value << 8) | b;
  if (bytes.size() > 4 || value > 0x7FFFFFFFull) return 0;
  return static_cast<int32_t>(value);
}

// Fills bytes from a value. A text goes character by character, NUL padded
// and cut at the width, whatever the width; a number goes big-endian, with
// the top byte of a 4-byte field left unmasked (see the .cpp).
void PutBytes(std::span<uint8_t> bytes, const Value& value);

// PutBytes of a whole number from 0 to the largest Long, written out: the
// record table takes two of these and a count for every record written.
inline void PutWhole(std::span<uint8_t> bytes, uint32_t number) {
  for (size_t k = bytes.size(); k-- > 0; number >>= 8) bytes[k] = static_cast<uint8_t>(number);
}

// For each byte, the character code of the first digit of its decimal form,
// in decimal: the byte 68 gives "54". The getters of creator and type use it.
std::string BytesToDecimalText(std::span<const uint8_t> bytes);

}  // namespace hifx
