// Any bytes taken as the font file of a PDF: the font cut down to a few
// glyphs and set in a document with a line of text. A font is read from the
// system's fonts, which a program can't vouch for: a crash, a hang or a
// runaway allocation is a bug; a font that makes no sense only prints badly.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "reports/PdfDocument.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string font(reinterpret_cast<const char*>(data), size);
  // The glyphs used: the input's first bytes, so that the fuzzer picks them.
  std::vector<uint16_t> glyphs;
  for (size_t i = 0; i + 1 < size && i < 16; i += 2)
    glyphs.push_back(static_cast<uint16_t>(data[i] << 8 | data[i + 1]));
  hifx::PdfDocument pdf([](std::string_view bytes) { return std::string(bytes); });
  const int number = pdf.AddFont("Fuzz Sans", font);
  for (const uint16_t glyph : glyphs) pdf.DescribeGlyph(number, glyph, 500, u'x');
  pdf.Text(number, 10, 72, 72, glyphs);
  pdf.Finish();
  return 0;
}
