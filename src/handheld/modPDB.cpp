#include "handheld/modPDB.h"

#include "base/Failure.h"

namespace hifx {

void PutBytes(std::span<uint8_t> bytes, const Value& value) {
  if (value.IsText()) {
    const std::string& text = value.Text();
    for (size_t k = 0; k < bytes.size(); ++k) {
      bytes[k] = k < text.size() ? static_cast<uint8_t>(text[k]) : 0;
    }
    return;
  }
  if (bytes.empty()) return;
  const int32_t v = value.ToInt32();
  if (bytes.size() == 4) {
    // The top byte is the value divided by 2^24 with no mask: a value from
    // -16777215 to -1 stores 0 there, anything lower does not fit a byte.
    const int32_t top = v / 16777216;
    if (top < 0) throw Failure(fail::kOverflow);
    bytes[0] = static_cast<uint8_t>(top);
    bytes[1] = static_cast<uint8_t>((v & 0xFF0000) / 65536);
    bytes[2] = static_cast<uint8_t>((v & 0xFF00) / 256);
    bytes[3] = static_cast<uint8_t>(v & 0xFF);
  } else if (bytes.size() == 2) {
    bytes[0] = static_cast<uint8_t>((v & 0xFF00) / 256);
    bytes[1] = static_cast<uint8_t>(v & 0xFF);
  } else {
    bytes[0] = static_cast<uint8_t>(v & 0xFF);
  }
}

std::string BytesToDecimalText(std::span<const uint8_t> bytes) {
  std::string out;
  for (const uint8_t b : bytes) {
    const char firstDigit = std::to_string(b)[0];
    out += std::to_string(static_cast<int>(firstDigit));
  }
  return out;
}

}  // namespace hifx
